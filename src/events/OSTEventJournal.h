#pragma once

#include "platform/OSTSQLiteFile.h"

#include <QByteArray>
#include <QMutex>
#include <QString>
#include <QStringList>

#include <vector>

struct sqlite3;

namespace ostrel {

// The events that are taken in and not yet confirmed by the service, each as the JSON text that
// goes on the wire. A SQLite database in WAL mode beside the settings store: an append commits
// before it returns, so an event survives the process being killed right after. Rows are removed
// only once the service has answered "OK" for the request that carried them.
//
// A file that is not a database or fails its integrity check is moved aside and replaced by an
// empty journal; problems() says so. Without a database (the folder cannot be written) every
// call fails quietly and the owner keeps events in memory. Thread-safe.
class OSTEventJournal {
public:
    enum class Kind { Queued = 0, Internal = 1 };

    struct Record {
        // Assigned by append(); increases with the order of intake. 0 while not stored.
        qint64 id = 0;
        Kind kind = Kind::Queued;
        QByteArray json;
        // How often the service has refused it in a request of its own; not stored.
        int refusals = 0;
    };

    explicit OSTEventJournal(const QString &databasePath);
    ~OSTEventJournal();
    OSTEventJournal(const OSTEventJournal &) = delete;
    OSTEventJournal &operator=(const OSTEventJournal &) = delete;

    // Beside the settings store, under QStandardPaths::AppDataLocation.
    static QString standardJournalPath();

    bool isOpen() const;
    // Stores the records in one transaction and gives each its id; on failure none is stored
    // and their ids stay 0.
    bool append(std::vector<Record> &records);
    // Everything stored, oldest first.
    std::vector<Record> loadAll() const;
    bool remove(const std::vector<qint64> &ids);
    bool removeAll();

    // Problems met so far, oldest first; taking them empties the list.
    QStringList takeProblems();

private:
    sqlite3 *database() const { return m_file.handle(); }

    mutable QMutex m_mutex;
    QStringList m_problems; // before m_file, which reports into it
    OSTSQLiteFile m_file;
};

} // namespace ostrel
