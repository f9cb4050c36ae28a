#include "ServiceDatabase.h"

#include <QTextStream>

#include <sqlite3.h>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

const char *const schema = R"(
PRAGMA journal_mode = WAL;
CREATE TABLE IF NOT EXISTS requests (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    endpoint TEXT NOT NULL,
    received_at REAL NOT NULL,
    parameters TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS events (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    ost_event_id TEXT UNIQUE,
    event_type TEXT,
    parameters TEXT NOT NULL,
    received_at REAL NOT NULL);
CREATE TABLE IF NOT EXISTS user_properties (
    user_key TEXT PRIMARY KEY,
    properties TEXT NOT NULL,
    updated_at REAL NOT NULL);
CREATE TABLE IF NOT EXISTS verification_pins (
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    phone_number TEXT NOT NULL,
    seed TEXT NOT NULL,
    pin TEXT NOT NULL,
    created_at REAL NOT NULL);
CREATE TABLE IF NOT EXISTS tracking_links (
    link_id TEXT PRIMARY KEY,
    url TEXT NOT NULL,
    targeting TEXT NOT NULL,
    additional_params TEXT NOT NULL,
    sender TEXT NOT NULL,
    created_at REAL NOT NULL);
)";

void reportFailure(sqlite3 *database, const QString &sql)
{
    QTextStream(stderr) << "database error: " << QString::fromUtf8(sqlite3_errmsg(database)) << " in "
                        << sql.simplified() << Qt::endl;
}

bool bind(sqlite3_stmt *statement, int index, const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        return sqlite3_bind_null(statement, index) == SQLITE_OK;
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::Bool:
        return sqlite3_bind_int64(statement, index, value.toLongLong()) == SQLITE_OK;
    case QMetaType::Double:
        return sqlite3_bind_double(statement, index, value.toDouble()) == SQLITE_OK;
    default: {
        const QByteArray text = value.toString().toUtf8();
        return sqlite3_bind_text(statement, index, text.constData(), static_cast<int>(text.size()),
                                 SQLITE_TRANSIENT) == SQLITE_OK;
    }
    }
}

QVariant column(sqlite3_stmt *statement, int index)
{
    switch (sqlite3_column_type(statement, index)) {
    case SQLITE_INTEGER:
        return static_cast<qlonglong>(sqlite3_column_int64(statement, index));
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, index);
    case SQLITE_NULL:
        return {};
    default:
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(statement, index)),
                                 sqlite3_column_bytes(statement, index));
    }
}

} // namespace

std::unique_ptr<ServiceDatabase> ServiceDatabase::open(const QString &path, QString &error)
{
    sqlite3 *database = nullptr;
    if (sqlite3_open_v2(path.toUtf8().constData(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        nullptr) != SQLITE_OK) {
        error = u"cannot open %1: %2"_s.arg(path, QString::fromUtf8(sqlite3_errmsg(database)));
        sqlite3_close(database);
        return nullptr;
    }
    sqlite3_busy_timeout(database, 5000);
    std::unique_ptr<ServiceDatabase> opened(new ServiceDatabase(database));
    if (!opened->createSchema()) {
        error = u"cannot create the tables in %1"_s.arg(path);
        return nullptr;
    }
    return opened;
}

ServiceDatabase::ServiceDatabase(sqlite3 *database) : m_database(database) {}

ServiceDatabase::~ServiceDatabase()
{
    sqlite3_close(m_database);
}

bool ServiceDatabase::execute(const QString &sql, const QVariantList &bindings)
{
    return run(sql, bindings, nullptr);
}

QList<ServiceDatabase::Row> ServiceDatabase::query(const QString &sql, const QVariantList &bindings)
{
    QList<Row> rows;
    if (!run(sql, bindings, &rows))
        rows.clear();
    return rows;
}

bool ServiceDatabase::run(const QString &sql, const QVariantList &bindings, QList<Row> *rows)
{
    sqlite3_stmt *statement = nullptr;
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(m_database, text.constData(), static_cast<int>(text.size()), &statement, nullptr)
        != SQLITE_OK) {
        reportFailure(m_database, sql);
        return false;
    }
    std::unique_ptr<sqlite3_stmt, decltype(&sqlite3_finalize)> owner(statement, sqlite3_finalize);
    for (int index = 0; index < bindings.size(); ++index) {
        if (!bind(statement, index + 1, bindings.at(index))) {
            reportFailure(m_database, sql);
            return false;
        }
    }
    int step;
    while ((step = sqlite3_step(statement)) == SQLITE_ROW) {
        if (!rows)
            continue;
        Row row;
        for (int index = 0; index < sqlite3_column_count(statement); ++index)
            row.append(column(statement, index));
        rows->append(row);
    }
    if (step != SQLITE_DONE) {
        reportFailure(m_database, sql);
        return false;
    }
    return true;
}

bool ServiceDatabase::createSchema()
{
    char *message = nullptr;
    if (sqlite3_exec(m_database, schema, nullptr, nullptr, &message) != SQLITE_OK) {
        QTextStream(stderr) << "database error: " << QString::fromUtf8(message) << Qt::endl;
        sqlite3_free(message);
        return false;
    }
    return true;
}

} // namespace ostrel::devserver
