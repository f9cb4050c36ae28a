#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel::demo {

// One event as the development service stored it (its "events" table).
struct StoredEvent {
    qint64 id = 0;
    QString eventType;
    QVariantMap parameters;

    // The SDK's own milestones (sessions, flows, screens, taps, sign-up), not the host's events
    // or the SDK's timing statistics.
    bool isMilestone() const;
    // One line for a terminal: the name and the parameters that tell milestones apart.
    QString summary() const;
};

// Reads the events the development service received, from its SQLite database, in the order
// the SDK recorded them (the device timestamp each event carries; the service's arrival order
// breaks ties). Opens the database read-only for each read. GUI thread.
class ServiceEventLog {
public:
    explicit ServiceEventLog(QString databasePath);

    // nullopt with `error` set when the database cannot be read.
    std::optional<QList<StoredEvent>> read(QString &error) const;

    // Orders events as described above.
    static void sortByRecordingTime(QList<StoredEvent> &events);

private:
    QString m_databasePath;
};

} // namespace ostrel::demo
