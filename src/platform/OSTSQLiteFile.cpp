#include "platform/OSTSQLiteFile.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

bool isDamagedDatabaseCode(int code)
{
    const int primary = code & 0xff;
    return primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT;
}

} // namespace

OSTSQLiteFile::OSTSQLiteFile(const QString &path, const char *schema, Naming naming, QStringList &problems)
    : m_path(path), m_schema(schema), m_naming(std::move(naming)), m_problems(problems)
{
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    if (const QString failure = open(); !failure.isEmpty())
        moveAsideAndReopen(failure);
}

OSTSQLiteFile::~OSTSQLiteFile()
{
    close();
}

QString OSTSQLiteFile::open()
{
    // The owner serialises calls, so SQLite's own mutex is not needed.
    if (sqlite3_open_v2(QFile::encodeName(m_path).constData(), &m_database,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr)
        != SQLITE_OK)
        return errorMessage();
    sqlite3_busy_timeout(m_database, 5000);
    if (!execute("PRAGMA journal_mode=WAL") || !execute("PRAGMA synchronous=NORMAL") || !execute(m_schema))
        return errorMessage();
    sqlite3_stmt *check = nullptr;
    if (sqlite3_prepare_v2(m_database, "PRAGMA quick_check", -1, &check, nullptr) != SQLITE_OK
        || sqlite3_step(check) != SQLITE_ROW) {
        sqlite3_finalize(check);
        return errorMessage();
    }
    const QString verdict = QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(check, 0)));
    sqlite3_finalize(check);
    if (verdict != u"ok"_s)
        return u"integrity check failed: %1"_s.arg(verdict);
    return {};
}

void OSTSQLiteFile::moveAsideAndReopen(const QString &reason)
{
    close();
    const std::optional<QString> aside = moveDamagedFileAside(m_path);
    m_problems.append(aside ? u"%1 %2 could not be used (%3); it was moved to %4 and %5"_s.arg(
                                  m_naming.file, m_path, reason, *aside, m_naming.freshStart)
                            : u"%1 %2 could not be used (%3) nor moved aside"_s.arg(m_naming.file, m_path, reason));
    if (!aside && QFile::exists(m_path))
        return;
    if (const QString failure = open(); !failure.isEmpty()) {
        m_problems.append(u"a new database at %1 could not be created: %2"_s.arg(m_path, failure));
        close();
    }
}

void OSTSQLiteFile::close()
{
    if (m_database)
        sqlite3_close_v2(m_database);
    m_database = nullptr;
}

bool OSTSQLiteFile::execute(const char *sql) const
{
    return sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

QString OSTSQLiteFile::errorMessage() const
{
    return m_database ? QString::fromUtf8(sqlite3_errmsg(m_database)) : u"cannot open the database"_s;
}

bool OSTSQLiteFile::finishTransaction(bool succeeded, const QString &what)
{
    if (succeeded && execute("COMMIT"))
        return true;
    const int code = m_database ? sqlite3_extended_errcode(m_database) : SQLITE_CANTOPEN;
    const QString reason = errorMessage();
    execute("ROLLBACK");
    if (isDamagedDatabaseCode(code))
        moveAsideAndReopen(reason);
    else
        m_problems.append(u"%1 in %2 failed: %3"_s.arg(what, m_path, reason));
    return false;
}

std::optional<QString> OSTSQLiteFile::moveDamagedFileAside(const QString &databasePath)
{
    const QString aside = u"%1.corrupt-%2"_s.arg(databasePath).arg(QDateTime::currentMSecsSinceEpoch());
    const bool moved = QFile::rename(databasePath, aside);
    QFile::remove(databasePath + u"-wal"_s);
    QFile::remove(databasePath + u"-shm"_s);
    if (!moved)
        return std::nullopt;
    return aside;
}

} // namespace ostrel
