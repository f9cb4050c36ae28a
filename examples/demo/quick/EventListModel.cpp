#include "EventListModel.h"

#include "EventDetails.h"

#include <ostrel/OSTEventEmitter.h>

#include <QTime>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

EventListModel::EventListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    connect(OSTEventEmitter::sharedEmitter(), &OSTEventEmitter::eventFired, this, &EventListModel::addEvent);
}

int EventListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

QVariant EventListModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case TimeRole:
        return row.time;
    case NameRole:
        return row.name;
    case TypeRole:
        return row.type;
    case DetailsRole:
        return row.details;
    default:
        return {};
    }
}

QHash<int, QByteArray> EventListModel::roleNames() const
{
    return {{TimeRole, "time"}, {NameRole, "name"}, {TypeRole, "type"}, {DetailsRole, "details"}};
}

void EventListModel::addEvent(const QString &name, const QVariantMap &parameters, const QString &type)
{
    const int row = static_cast<int>(m_rows.size());
    beginInsertRows({}, row, row);
    m_rows.append(Row{QTime::currentTime().toString(u"HH:mm:ss.zzz"_s), name, type, EventDetails::of(parameters)});
    endInsertRows();
}

} // namespace ostrel::demo
