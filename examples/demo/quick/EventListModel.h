#pragma once

#include <QAbstractListModel>
#include <QList>
#include <QString>

namespace ostrel::demo {

// The SDK's events as they fire (OSTEventEmitter), for a QML list: time, wire name, type and the
// parameters that tell them apart; the newest last.
//
// Lives on the GUI thread (the emitter's signal is queued to it); owned by main().
class EventListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { TimeRole = Qt::UserRole + 1, NameRole, TypeRole, DetailsRole };

    explicit EventListModel(QObject *parent = nullptr);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

private:
    struct Row {
        QString time;
        QString name;
        QString type;
        QString details;
    };

    void addEvent(const QString &name, const QVariantMap &parameters, const QString &type);

    QList<Row> m_rows;
};

} // namespace ostrel::demo
