#include "platform/OSTDefaultsStore.h"

#include "platform/OSTPropertyListArchive.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMutexLocker>
#include <QStandardPaths>

#include <sqlite3.h>

#include <utility>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr const char *schema = R"sql(
    CREATE TABLE IF NOT EXISTS domains (name TEXT PRIMARY KEY NOT NULL) WITHOUT ROWID;
    CREATE TABLE IF NOT EXISTS entries (
        domain TEXT NOT NULL,
        key TEXT NOT NULL,
        value BLOB NOT NULL,
        PRIMARY KEY (domain, key)
    ) WITHOUT ROWID;
)sql";

// A prepared statement that finalises itself.
class Statement {
public:
    Statement(sqlite3 *database, const char *sql)
    {
        if (sqlite3_prepare_v2(database, sql, -1, &m_statement, nullptr) != SQLITE_OK)
            m_statement = nullptr;
    }
    ~Statement() { sqlite3_finalize(m_statement); }
    Statement(const Statement &) = delete;
    Statement &operator=(const Statement &) = delete;

    bool isValid() const { return m_statement; }
    void bind(int index, const QString &text)
    {
        const QByteArray utf8 = text.toUtf8();
        sqlite3_bind_text(m_statement, index, utf8.constData(), static_cast<int>(utf8.size()),
                          SQLITE_TRANSIENT);
    }
    void bind(int index, const QByteArray &blob)
    {
        sqlite3_bind_blob(m_statement, index, blob.constData(), static_cast<int>(blob.size()),
                          SQLITE_TRANSIENT);
    }
    int step() { return sqlite3_step(m_statement); }
    QString text(int column) const
    {
        return QString::fromUtf8(reinterpret_cast<const char *>(sqlite3_column_text(m_statement, column)),
                                 sqlite3_column_bytes(m_statement, column));
    }
    QByteArray blob(int column) const
    {
        return QByteArray(static_cast<const char *>(sqlite3_column_blob(m_statement, column)),
                          sqlite3_column_bytes(m_statement, column));
    }

private:
    sqlite3_stmt *m_statement = nullptr;
};

bool isDamagedDatabaseCode(int code)
{
    const int primary = code & 0xff;
    return primary == SQLITE_NOTADB || primary == SQLITE_CORRUPT;
}

} // namespace

OSTDefaultsStore::OSTDefaultsStore(const QString &databasePath) : m_path(databasePath)
{
    QMutexLocker locker(&m_mutex);
    QDir().mkpath(QFileInfo(m_path).absolutePath());
    if (const QString failure = open(); !failure.isEmpty())
        moveAsideAndReopen(failure);
}

OSTDefaultsStore::~OSTDefaultsStore()
{
    QMutexLocker locker(&m_mutex);
    closeDatabase();
}

QString OSTDefaultsStore::standardStorePath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
        + u"/Preferences/ostrel-defaults.sqlite"_s;
}

OSTDefaultsStore &OSTDefaultsStore::standardStore()
{
    static OSTDefaultsStore *store = new OSTDefaultsStore(standardStorePath());
    return *store;
}

bool OSTDefaultsStore::isOpen() const
{
    QMutexLocker locker(&m_mutex);
    return m_database;
}

std::optional<QString> OSTDefaultsStore::moveDamagedFileAside(const QString &databasePath)
{
    const QString aside = u"%1.corrupt-%2"_s.arg(databasePath).arg(QDateTime::currentMSecsSinceEpoch());
    const bool moved = QFile::rename(databasePath, aside);
    QFile::remove(databasePath + u"-wal"_s);
    QFile::remove(databasePath + u"-shm"_s);
    if (!moved)
        return std::nullopt;
    return aside;
}

QString OSTDefaultsStore::open()
{
    const int result = sqlite3_open_v2(QFile::encodeName(m_path).constData(), &m_database,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_FULLMUTEX,
                                       nullptr);
    if (result != SQLITE_OK)
        return databaseError();
    sqlite3_busy_timeout(m_database, 5000);
    // NORMAL in WAL mode: a commit survives the process dying; synchronize() adds a full sync.
    if (!execute("PRAGMA journal_mode=WAL") || !execute("PRAGMA synchronous=NORMAL")
        || !execute(schema))
        return databaseError();
    Statement check(m_database, "PRAGMA quick_check");
    if (!check.isValid() || check.step() != SQLITE_ROW)
        return databaseError();
    if (const QString verdict = check.text(0); verdict != u"ok"_s)
        return u"integrity check failed: %1"_s.arg(verdict);
    return {};
}

void OSTDefaultsStore::moveAsideAndReopen(const QString &reason)
{
    closeDatabase();
    const std::optional<QString> aside = moveDamagedFileAside(m_path);
    noteProblem(aside ? u"the store %1 could not be used (%2); it was moved to %3 and the SDK starts "
                        u"with empty settings"_s.arg(m_path, reason, *aside)
                      : u"the store %1 could not be used (%2) nor moved aside"_s.arg(m_path, reason));
    if (!aside && QFile::exists(m_path))
        return;
    if (const QString failure = open(); !failure.isEmpty()) {
        noteProblem(u"a new store at %1 could not be created: %2"_s.arg(m_path, failure));
        closeDatabase();
    }
}

void OSTDefaultsStore::closeDatabase()
{
    if (m_database)
        sqlite3_close_v2(m_database);
    m_database = nullptr;
}

bool OSTDefaultsStore::execute(const char *sql) const
{
    return sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool OSTDefaultsStore::runInTransaction(const std::function<bool()> &work)
{
    if (!m_database)
        return false;
    if (execute("BEGIN IMMEDIATE") && work() && execute("COMMIT"))
        return true;
    const int code = sqlite3_extended_errcode(m_database);
    const QString reason = databaseError();
    execute("ROLLBACK");
    if (isDamagedDatabaseCode(code))
        moveAsideAndReopen(reason);
    else
        noteProblem(u"a change to %1 failed: %2"_s.arg(m_path, reason));
    return false;
}

std::optional<QVariantMap> OSTDefaultsStore::persistentDomain(const QString &name) const
{
    QMutexLocker locker(&m_mutex);
    if (!m_database)
        return std::nullopt;
    Statement exists(m_database, "SELECT 1 FROM domains WHERE name = ?1");
    exists.bind(1, name);
    if (!exists.isValid() || exists.step() != SQLITE_ROW)
        return std::nullopt;

    QVariantMap domain;
    Statement entries(m_database, "SELECT key, value FROM entries WHERE domain = ?1");
    entries.bind(1, name);
    while (entries.isValid() && entries.step() == SQLITE_ROW) {
        const QString key = entries.text(0);
        if (const auto value = OSTPropertyListArchive::unarchive(entries.blob(1)))
            domain.insert(key, *value);
        else
            noteProblem(u"the stored value of \"%1\" in \"%2\" could not be read and was skipped"_s.arg(key, name));
    }
    return domain;
}

bool OSTDefaultsStore::setPersistentDomain(const QString &name, const QVariantMap &domain)
{
    QMutexLocker locker(&m_mutex);
    return runInTransaction([&] {
        Statement clear(m_database, "DELETE FROM entries WHERE domain = ?1");
        clear.bind(1, name);
        if (!clear.isValid() || clear.step() != SQLITE_DONE || !insertDomainName(name))
            return false;
        for (auto entry = domain.constBegin(); entry != domain.constEnd(); ++entry) {
            if (!insertValue(name, entry.key(), entry.value()))
                return false;
        }
        return true;
    });
}

bool OSTDefaultsStore::removePersistentDomain(const QString &name)
{
    QMutexLocker locker(&m_mutex);
    return runInTransaction([&] {
        Statement clear(m_database, "DELETE FROM entries WHERE domain = ?1");
        clear.bind(1, name);
        Statement forget(m_database, "DELETE FROM domains WHERE name = ?1");
        forget.bind(1, name);
        return clear.isValid() && clear.step() == SQLITE_DONE && forget.isValid()
            && forget.step() == SQLITE_DONE;
    });
}

bool OSTDefaultsStore::setValue(const QString &domain, const QString &key, const QVariant &value)
{
    if (!OSTPropertyListArchive::isPropertyListValue(value))
        return false;
    QMutexLocker locker(&m_mutex);
    return runInTransaction([&] { return insertDomainName(domain) && insertValue(domain, key, value); });
}

bool OSTDefaultsStore::removeValue(const QString &domain, const QString &key)
{
    QMutexLocker locker(&m_mutex);
    return runInTransaction([&] {
        Statement remove(m_database, "DELETE FROM entries WHERE domain = ?1 AND key = ?2");
        remove.bind(1, domain);
        remove.bind(2, key);
        return remove.isValid() && remove.step() == SQLITE_DONE;
    });
}

bool OSTDefaultsStore::synchronize()
{
    QMutexLocker locker(&m_mutex);
    if (!m_database)
        return false;
    if (execute("PRAGMA synchronous=FULL") && execute("PRAGMA wal_checkpoint(FULL)")
        && execute("PRAGMA synchronous=NORMAL"))
        return true;
    noteProblem(u"flushing %1 failed: %2"_s.arg(m_path, databaseError()));
    return false;
}

QStringList OSTDefaultsStore::takeProblems()
{
    QMutexLocker locker(&m_mutex);
    return std::exchange(m_problems, {});
}

bool OSTDefaultsStore::insertValue(const QString &domain, const QString &key, const QVariant &value)
{
    const QByteArray archived = OSTPropertyListArchive::archive(value);
    if (archived.isEmpty())
        return false;
    Statement upsert(m_database, "INSERT OR REPLACE INTO entries (domain, key, value) VALUES (?1, ?2, ?3)");
    upsert.bind(1, domain);
    upsert.bind(2, key);
    upsert.bind(3, archived);
    return upsert.isValid() && upsert.step() == SQLITE_DONE;
}

bool OSTDefaultsStore::insertDomainName(const QString &domain)
{
    Statement insert(m_database, "INSERT OR IGNORE INTO domains (name) VALUES (?1)");
    insert.bind(1, domain);
    return insert.isValid() && insert.step() == SQLITE_DONE;
}

void OSTDefaultsStore::noteProblem(const QString &problem) const
{
    m_problems.append(problem);
}

QString OSTDefaultsStore::databaseError() const
{
    return m_database ? QString::fromUtf8(sqlite3_errmsg(m_database)) : u"cannot open the database"_s;
}

} // namespace ostrel
