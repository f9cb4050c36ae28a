#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class QQmlEngine;
class QQuickItem;

namespace ostrel {

// Asks the user for a picture file for a Qt Quick item: Qt Quick has no file dialog in C++ that
// needs no widgets, so this opens QtQuick.Dialogs' FileDialog, made from QML with the item's QML
// engine, or with an engine of its own when the item was not made by QML. The dialog is made on
// the first open() and kept for the next; it is modal over the item's window.
//
// finished() tells the chosen file's path, or an empty path when the user cancelled or the
// dialog could not be made (the reason is logged: the QtQuick.Dialogs module is missing, say).
//
// Lives on the GUI thread; owned by its QObject parent (the item it asks for). Keeps the item
// weakly; the dialog is its child.
class OSTQuickPictureDialog final : public QObject {
    Q_OBJECT

public:
    explicit OSTQuickPictureDialog(QQuickItem &item, QObject *parent = nullptr);
    ~OSTQuickPictureDialog() override;

    void open();
    // The QML FileDialog, null before the first open() or when it could not be made.
    QObject *dialog() const { return m_dialog; }

signals:
    void finished(const QString &path);

private slots:
    // Connected by name: the dialog's class is private to Qt.
    void dialogAccepted();
    void dialogRejected();

private:
    QObject *makeDialog();
    QQmlEngine &engine();

    QPointer<QQuickItem> m_item;
    std::unique_ptr<QQmlEngine> m_ownEngine; // only when the item has no QML engine
    QPointer<QObject> m_dialog;
};

} // namespace ostrel
