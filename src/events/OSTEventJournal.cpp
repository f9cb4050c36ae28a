#include "events/OSTEventJournal.h"

#include "platform/OSTDefaultsStore.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>

#include <sqlite3.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr const char *schema = R"sql(
    CREATE TABLE IF NOT EXISTS events (
        id INTEGER PRIMARY KEY,
        internal INTEGER NOT NULL,
        json BLOB NOT NULL
    );
)sql";

using StatementPointer = std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)>;

StatementPointer prepare(sqlite3 *database, const char *sql)
{
    sqlite3_stmt *statement = nullptr;
    if (sqlite3_prepare_v2(database, sql, -1, &statement, nullptr) != SQLITE_OK)
        statement = nullptr;
    return StatementPointer(statement, &sqlite3_finalize);
}

bool isDamagedDatabaseCode(int code)
{
    const int primary = code & 0xff;
    return primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT;
}

} // namespace

OSTEventJournal::OSTEventJournal(const QString &databasePath) : m_path(databasePath)
{
    QMutexLocker locker(&m_mutex);
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    if (const QString failure = open(); !failure.isEmpty())
        moveAsideAndReopen(failure);
}

OSTEventJournal::~OSTEventJournal()
{
    QMutexLocker locker(&m_mutex);
    closeDatabase();
}

QString OSTEventJournal::standardJournalPath()
{
    return QFileInfo(OSTDefaultsStore::standardStorePath()).absolutePath() + u"/ostrel-events.sqlite"_s;
}

bool OSTEventJournal::isOpen() const
{
    QMutexLocker locker(&m_mutex);
    return m_database;
}

QString OSTEventJournal::open()
{
    if (sqlite3_open_v2(QFile::encodeName(m_path).constData(), &m_database,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr)
        != SQLITE_OK)
        return databaseError();
    sqlite3_busy_timeout(m_database, 5000);
    // NORMAL in WAL mode: a commit survives the process dying, which is what the journal is for.
    if (!execute("PRAGMA journal_mode=WAL") || !execute("PRAGMA synchronous=NORMAL") || !execute(schema))
        return databaseError();
    const StatementPointer check = prepare(m_database, "PRAGMA quick_check");
    if (!check || sqlite3_step(check.get()) != SQLITE_ROW)
        return databaseError();
    const auto *verdict = reinterpret_cast<const char *>(sqlite3_column_text(check.get(), 0));
    if (qstrcmp(verdict, "ok") != 0)
        return u"integrity check failed: %1"_s.arg(QString::fromUtf8(verdict));
    return {};
}

void OSTEventJournal::moveAsideAndReopen(const QString &reason)
{
    closeDatabase();
    const std::optional<QString> aside = OSTDefaultsStore::moveDamagedFileAside(m_path);
    m_problems.append(aside ? u"the event journal %1 could not be used (%2); it was moved to %3 and the "
                              u"event queue starts empty"_s.arg(m_path, reason, *aside)
                            : u"the event journal %1 could not be used (%2) nor moved aside"_s.arg(m_path, reason));
    if (!aside && QFile::exists(m_path))
        return;
    if (const QString failure = open(); !failure.isEmpty()) {
        m_problems.append(u"a new event journal at %1 could not be created: %2"_s.arg(m_path, failure));
        closeDatabase();
    }
}

void OSTEventJournal::closeDatabase()
{
    if (m_database)
        sqlite3_close_v2(m_database);
    m_database = nullptr;
}

bool OSTEventJournal::execute(const char *sql) const
{
    return sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool OSTEventJournal::finishTransaction(bool succeeded, const QString &what)
{
    if (succeeded && execute("COMMIT"))
        return true;
    const int code = sqlite3_extended_errcode(m_database);
    const QString reason = databaseError();
    execute("ROLLBACK");
    if (isDamagedDatabaseCode(code))
        moveAsideAndReopen(reason);
    else
        m_problems.append(u"%1 in the event journal %2 failed: %3"_s.arg(what, m_path, reason));
    return false;
}

bool OSTEventJournal::append(std::vector<Record> &records)
{
    QMutexLocker locker(&m_mutex);
    if (!m_database || !execute("BEGIN IMMEDIATE"))
        return m_database && finishTransaction(false, u"storing events"_s);
    const StatementPointer insert = prepare(m_database, "INSERT INTO events (internal, json) VALUES (?1, ?2)");
    bool succeeded = bool(insert);
    for (Record &record : records) {
        if (!succeeded)
            break;
        sqlite3_bind_int(insert.get(), 1, static_cast<int>(record.kind));
        sqlite3_bind_blob(insert.get(), 2, record.json.constData(), static_cast<int>(record.json.size()), SQLITE_STATIC);
        succeeded = sqlite3_step(insert.get()) == SQLITE_DONE;
        record.id = sqlite3_last_insert_rowid(m_database);
        sqlite3_reset(insert.get());
    }
    if (finishTransaction(succeeded, u"storing events"_s))
        return true;
    for (Record &record : records)
        record.id = 0;
    return false;
}

std::vector<OSTEventJournal::Record> OSTEventJournal::loadAll() const
{
    QMutexLocker locker(&m_mutex);
    std::vector<Record> records;
    if (!m_database)
        return records;
    const StatementPointer select = prepare(m_database, "SELECT id, internal, json FROM events ORDER BY id");
    while (select && sqlite3_step(select.get()) == SQLITE_ROW) {
        const auto *bytes = static_cast<const char *>(sqlite3_column_blob(select.get(), 2));
        records.push_back({sqlite3_column_int64(select.get(), 0),
                           sqlite3_column_int(select.get(), 1) ? Kind::Internal : Kind::Queued,
                           QByteArray(bytes, sqlite3_column_bytes(select.get(), 2))});
    }
    return records;
}

bool OSTEventJournal::remove(const std::vector<qint64> &ids)
{
    QMutexLocker locker(&m_mutex);
    if (!m_database || !execute("BEGIN IMMEDIATE"))
        return m_database && finishTransaction(false, u"removing sent events"_s);
    const StatementPointer remove = prepare(m_database, "DELETE FROM events WHERE id = ?1");
    bool succeeded = bool(remove);
    for (const qint64 id : ids) {
        if (!succeeded)
            break;
        sqlite3_bind_int64(remove.get(), 1, id);
        succeeded = sqlite3_step(remove.get()) == SQLITE_DONE;
        sqlite3_reset(remove.get());
    }
    return finishTransaction(succeeded, u"removing sent events"_s);
}

bool OSTEventJournal::removeAll()
{
    QMutexLocker locker(&m_mutex);
    if (!m_database)
        return false;
    if (execute("DELETE FROM events"))
        return true;
    m_problems.append(u"emptying the event journal %1 failed: %2"_s.arg(m_path, databaseError()));
    return false;
}

QStringList OSTEventJournal::takeProblems()
{
    QMutexLocker locker(&m_mutex);
    return std::exchange(m_problems, {});
}

QString OSTEventJournal::databaseError() const
{
    return m_database ? QString::fromUtf8(sqlite3_errmsg(m_database)) : u"cannot open the journal"_s;
}

} // namespace ostrel
