#pragma once

#include <QMutex>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <optional>

struct sqlite3;
struct sqlite3_stmt;

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

    // Moves a damaged database file (and its write-ahead log) out of the way, to a name beside it
    // that marks it corrupt; returns that name, or nothing when the file could not be moved.
    static std::optional<QString> moveDamagedFileAside(const QString &databasePath);

    QString databasePath() const { return m_path; }
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
    // Opens and prepares the database; returns why that failed, or an empty string.
    QString open();
    void moveAsideAndReopen(const QString &reason);
    void closeDatabase();
    bool execute(const char *sql) const;
    bool runInTransaction(const std::function<bool()> &work);
    bool insertValue(const QString &domain, const QString &key, const QVariant &value);
    bool insertDomainName(const QString &domain);
    void noteProblem(const QString &problem) const;
    QString databaseError() const;

    const QString m_path;
    mutable QMutex m_mutex;
    sqlite3 *m_database = nullptr;
    mutable QStringList m_problems;
};

} // namespace ostrel
