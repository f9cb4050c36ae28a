#include "events/OSTEventJournal.h"

#include "platform/OSTDefaultsStore.h"

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

} // namespace

OSTEventJournal::OSTEventJournal(const QString &databasePath)
    : m_file(databasePath, schema, {u"the event journal"_s, u"the event queue starts empty"_s}, m_problems)
{
}

OSTEventJournal::~OSTEventJournal() = default;

QString OSTEventJournal::standardJournalPath()
{
    return QFileInfo(OSTDefaultsStore::standardStorePath()).absolutePath() + u"/ostrel-events.sqlite"_s;
}

bool OSTEventJournal::isOpen() const
{
    QMutexLocker locker(&m_mutex);
    return database();
}

bool OSTEventJournal::append(std::vector<Record> &records)
{
    QMutexLocker locker(&m_mutex);
    if (!database() || !m_file.execute("BEGIN IMMEDIATE"))
        return database() && m_file.finishTransaction(false, u"storing events"_s);
    const StatementPointer insert = prepare(database(), "INSERT INTO events (internal, json) VALUES (?1, ?2)");
    bool succeeded = bool(insert);
    for (Record &record : records) {
        if (!succeeded)
            break;
        sqlite3_bind_int(insert.get(), 1, static_cast<int>(record.kind));
        sqlite3_bind_blob(insert.get(), 2, record.json.constData(), static_cast<int>(record.json.size()), SQLITE_STATIC);
        succeeded = sqlite3_step(insert.get()) == SQLITE_DONE;
        record.id = sqlite3_last_insert_rowid(database());
        sqlite3_reset(insert.get());
    }
    if (m_file.finishTransaction(succeeded, u"storing events"_s))
        return true;
    for (Record &record : records)
        record.id = 0;
    return false;
}

std::vector<OSTEventJournal::Record> OSTEventJournal::loadAll() const
{
    QMutexLocker locker(&m_mutex);
    std::vector<Record> records;
    if (!database())
        return records;
    const StatementPointer select = prepare(database(), "SELECT id, internal, json FROM events ORDER BY id");
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
    if (!database() || !m_file.execute("BEGIN IMMEDIATE"))
        return database() && m_file.finishTransaction(false, u"removing sent events"_s);
    const StatementPointer remove = prepare(database(), "DELETE FROM events WHERE id = ?1");
    bool succeeded = bool(remove);
    for (const qint64 id : ids) {
        if (!succeeded)
            break;
        sqlite3_bind_int64(remove.get(), 1, id);
        succeeded = sqlite3_step(remove.get()) == SQLITE_DONE;
        sqlite3_reset(remove.get());
    }
    return m_file.finishTransaction(succeeded, u"removing sent events"_s);
}

bool OSTEventJournal::removeAll()
{
    QMutexLocker locker(&m_mutex);
    if (!database())
        return false;
    if (m_file.execute("DELETE FROM events"))
        return true;
    m_problems.append(u"emptying the event journal %1 failed: %2"_s.arg(m_file.path(), m_file.errorMessage()));
    return false;
}

QStringList OSTEventJournal::takeProblems()
{
    QMutexLocker locker(&m_mutex);
    return std::exchange(m_problems, {});
}


} // namespace ostrel
