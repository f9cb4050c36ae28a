#include "ServiceEventLog.h"

#include "EventDetails.h"

#include <QJsonDocument>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QUuid>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

const QString timingEventName = u"$$OST Timing"_s;
const QString deviceTimestampKey = u"device_timestamp"_s;

// Removes the named connection once its last handle is gone.
class ScopedConnection {
public:
    explicit ScopedConnection(const QString &path)
        : m_name(u"ostrel-demo-"_s + QUuid::createUuid().toString(QUuid::WithoutBraces))
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s, m_name);
        database.setDatabaseName(path);
        database.setConnectOptions(u"QSQLITE_OPEN_READONLY"_s);
    }
    ~ScopedConnection() { QSqlDatabase::removeDatabase(m_name); }
    QSqlDatabase database() const { return QSqlDatabase::database(m_name, false); }

private:
    QString m_name;
};

} // namespace

bool StoredEvent::isMilestone() const
{
    return parameters.value(u"auto"_s).toBool() && eventType != timingEventName;
}

QString StoredEvent::summary() const
{
    const QString details = EventDetails::of(parameters);
    return u"#%1 %2"_s.arg(id).arg(eventType) + (details.isEmpty() ? QString() : u"  ("_s + details + u')');
}

ServiceEventLog::ServiceEventLog(QString databasePath)
    : m_databasePath(std::move(databasePath))
{
}

std::optional<QList<StoredEvent>> ServiceEventLog::read(QString &error) const
{
    const ScopedConnection connection(m_databasePath);
    QList<StoredEvent> events;
    {
        QSqlDatabase database = connection.database();
        if (!database.open()) {
            error = database.lastError().text();
            return std::nullopt;
        }
        QSqlQuery query(database);
        if (!query.exec(u"SELECT id, event_type, parameters FROM events ORDER BY id"_s)) {
            error = query.lastError().text();
            return std::nullopt;
        }
        while (query.next()) {
            events.append(StoredEvent{query.value(0).toLongLong(), query.value(1).toString(),
                                      QJsonDocument::fromJson(query.value(2).toByteArray()).toVariant().toMap()});
        }
    }
    sortByRecordingTime(events);
    return events;
}

void ServiceEventLog::sortByRecordingTime(QList<StoredEvent> &events)
{
    // The timestamp text ("yyyy-MM-dd HH:mm:ss.SSSSSS", UTC) sorts as it reads.
    std::stable_sort(events.begin(), events.end(), [](const StoredEvent &left, const StoredEvent &right) {
        const QString leftTime = left.parameters.value(deviceTimestampKey).toString();
        const QString rightTime = right.parameters.value(deviceTimestampKey).toString();
        return leftTime != rightTime ? leftTime < rightTime : left.id < right.id;
    });
}

} // namespace ostrel::demo
