#pragma once

#include <QString>
#include <QStringList>

#include <optional>

struct sqlite3;

namespace ostrel {

// A SQLite database file in WAL mode (synchronous NORMAL: a commit survives the process being
// killed) that repairs itself. A file that is not a database, fails its integrity check, or
// turns out damaged during a transaction is moved aside and replaced by an empty database with
// the same schema; each such event is appended to the owner's problem list.
//
// Not thread-safe: the owner serialises every call (and every use of handle()).
class OSTSQLiteFile {
public:
    // How problems name the file and what an empty replacement means for its owner, e.g.
    // {"the store", "the SDK starts with empty settings"}.
    struct Naming {
        QString file;
        QString freshStart;
    };

    // Opens (creating the folder and the file when needed) and applies `schema`. `problems`
    // must outlive this object.
    OSTSQLiteFile(const QString &path, const char *schema, Naming naming, QStringList &problems);
    ~OSTSQLiteFile();
    OSTSQLiteFile(const OSTSQLiteFile &) = delete;
    OSTSQLiteFile &operator=(const OSTSQLiteFile &) = delete;

    const QString &path() const { return m_path; }
    // The open database, or null when none could be opened (every use then fails).
    sqlite3 *handle() const { return m_database; }
    bool execute(const char *sql) const;
    QString errorMessage() const;

    // Ends a transaction: commits when `succeeded`, otherwise (or when the commit fails) rolls
    // back. A damaged file is then moved aside and replaced; any other failure is noted as
    // "`what` failed". Returns whether the transaction was committed.
    bool finishTransaction(bool succeeded, const QString &what);

    // Moves a damaged database file (and its write-ahead log) out of the way, to a name beside it
    // that marks it corrupt; returns that name, or nothing when the file could not be moved.
    static std::optional<QString> moveDamagedFileAside(const QString &databasePath);

private:
    // Opens and prepares the database; returns why that failed, or an empty string.
    QString open();
    void moveAsideAndReopen(const QString &reason);
    void close();

    const QString m_path;
    const char *const m_schema;
    const Naming m_naming;
    QStringList &m_problems;
    sqlite3 *m_database = nullptr;
};

} // namespace ostrel
