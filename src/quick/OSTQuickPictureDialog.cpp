#include "quick/OSTQuickPictureDialog.h"

#include "core/OSTLogging.h"

#include <QCoreApplication>
#include <QImageReader>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr auto dialogSource = R"(import QtQuick
import QtQuick.Dialogs
FileDialog { fileMode: FileDialog.OpenFile })";

QStringList imageNameFilters()
{
    QStringList patterns;
    for (const QByteArray &format : QImageReader::supportedImageFormats())
        patterns.append(u"*."_s + QString::fromLatin1(format));
    return {QCoreApplication::translate("QFileDialog", "Images (%1)").arg(patterns.join(u' '))};
}

} // namespace

OSTQuickPictureDialog::OSTQuickPictureDialog(QQuickItem &item, QObject *parent)
    : QObject(parent),
      m_item(&item)
{
}

OSTQuickPictureDialog::~OSTQuickPictureDialog()
{
    // Made by the engine: gone before an engine of our own is.
    delete m_dialog;
}

QQmlEngine &OSTQuickPictureDialog::engine()
{
    if (QQmlEngine *itemEngine = m_item ? qmlEngine(m_item) : nullptr)
        return *itemEngine;
    if (!m_ownEngine)
        m_ownEngine = std::make_unique<QQmlEngine>();
    return *m_ownEngine;
}

QObject *OSTQuickPictureDialog::makeDialog()
{
    QQmlComponent component(&engine());
    component.setData(dialogSource, QUrl());
    QObject *dialog = component.create();
    if (!dialog) {
        OSTLogging::logWarning(u"The picture dialog could not be made: %1"_s, component.errorString());
        return nullptr;
    }
    dialog->setParent(this);
    dialog->setProperty("title", QCoreApplication::translate("QFileDialog", "Choose a picture"));
    dialog->setProperty("nameFilters", imageNameFilters());
    connect(dialog, SIGNAL(accepted()), this, SLOT(dialogAccepted()));
    connect(dialog, SIGNAL(rejected()), this, SLOT(dialogRejected()));
    return dialog;
}

void OSTQuickPictureDialog::open()
{
    if (!m_dialog)
        m_dialog = makeDialog();
    if (!m_dialog) {
        emit finished(QString());
        return;
    }
    if (m_item && m_item->window())
        m_dialog->setProperty("parentWindow", QVariant::fromValue<QWindow *>(m_item->window()));
    QMetaObject::invokeMethod(m_dialog, "open");
}

void OSTQuickPictureDialog::dialogAccepted()
{
    emit finished(m_dialog->property("selectedFile").toUrl().toLocalFile());
}

void OSTQuickPictureDialog::dialogRejected()
{
    emit finished(QString());
}

} // namespace ostrel
