#pragma once

#include "platform/OSTSQLiteFile.h"

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>

struct sqlite3;

namespace ostrel {

// Named persistent domains of property-list values, kept in one SQLite database in WAL mode.
// Each key is its own row, so changing one key writes only that key. A committed change survives
// the process being killed; synchronize() also makes it survive a power loss.
//
// A file that is not a database, or fails its integrity check, is moved aside and replaced by an
// empty database; problems() then describes what happened. The store does not log (it sits below
// the SDK's logging): its owner reports problems(). Thread-safe.
class OSTDefaultsStore {
public:
    explicit OSTDefaultsStore(const QString &databasePath);
    ~OSTDefaultsStore();

    OSTDefaultsStore(const OSTDefaultsStore &) = delete;
    OSTDefaultsStore &operator=(const OSTDefaultsStore &) = delete;

    // The application's store, under QStandardPaths::AppDataLocation, opened on first use.
    static OSTDefaultsStore &standardStore();
    static QString standardStorePath();

    QString databasePath() const { return m_file.path(); }
    // Whether a database is open; when false every write fails and reads find nothing.
    bool isOpen() const;

    // The domain's values, or nothing when no such domain was ever stored. Values that no longer
    // decode are left out and noted in problems().
    std::optional<QVariantMap> persistentDomain(const QString &name) const;
    // Replaces the whole domain.
    bool setPersistentDomain(const QString &name, const QVariantMap &domain);
    bool removePersistentDomain(const QString &name);

    // Stores one key of a domain (creating the domain); the value must be a property-list value.
    bool setValue(const QString &domain, const QString &key, const QVariant &value);
    bool removeValue(const QString &domain, const QString &key);

    // Moves everything written so far from the write-ahead log into the database file, with a
    // full sync to disk.
    bool synchronize();

    // Problems met so far (corrupt file moved aside, undecodable values, failed writes), oldest
    // first; taking them empties the list.
    QStringList takeProblems();

private:
    bool runInTransaction(const std::function<bool()> &work);
    bool insertValue(const QString &domain, const QString &key, const QVariant &value);
    bool insertDomainName(const QString &domain);
    sqlite3 *database() const { return m_file.handle(); }

    mutable QMutex m_mutex;
    mutable QStringList m_problems; // before m_file, which reports into it
    OSTSQLiteFile m_file;
};

} // namespace ostrel
