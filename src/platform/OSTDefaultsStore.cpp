#include "platform/OSTDefaultsStore.h"

#include "platform/OSTPropertyListArchive.h"

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


} // namespace

OSTDefaultsStore::OSTDefaultsStore(const QString &databasePath)
    : m_file(databasePath, schema, {u"the store"_s, u"the SDK starts with empty settings"_s}, m_problems)
{
}

OSTDefaultsStore::~OSTDefaultsStore() = default;

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
    return database();
}

bool OSTDefaultsStore::runInTransaction(const std::function<bool()> &work)
{
    if (!database())
        return false;
    const bool succeeded = m_file.execute("BEGIN IMMEDIATE") && work();
    return m_file.finishTransaction(succeeded, u"a change"_s);
}

std::optional<QVariantMap> OSTDefaultsStore::persistentDomain(const QString &name) const
{
    QMutexLocker locker(&m_mutex);
    if (!database())
        return std::nullopt;
    Statement exists(database(), "SELECT 1 FROM domains WHERE name = ?1");
    exists.bind(1, name);
    if (!exists.isValid() || exists.step() != SQLITE_ROW)
        return std::nullopt;

    QVariantMap domain;
    Statement entries(database(), "SELECT key, value FROM entries WHERE domain = ?1");
    entries.bind(1, name);
    while (entries.isValid() && entries.step() == SQLITE_ROW) {
        const QString key = entries.text(0);
        if (const auto value = OSTPropertyListArchive::unarchive(entries.blob(1)))
            domain.insert(key, *value);
        else
            m_problems.append(u"the stored value of \"%1\" in \"%2\" could not be read and was skipped"_s.arg(key, name));
    }
    return domain;
}

bool OSTDefaultsStore::setPersistentDomain(const QString &name, const QVariantMap &domain)
{
    QMutexLocker locker(&m_mutex);
    return runInTransaction([&] {
        Statement clear(database(), "DELETE FROM entries WHERE domain = ?1");
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
        Statement clear(database(), "DELETE FROM entries WHERE domain = ?1");
        clear.bind(1, name);
        Statement forget(database(), "DELETE FROM domains WHERE name = ?1");
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
        Statement remove(database(), "DELETE FROM entries WHERE domain = ?1 AND key = ?2");
        remove.bind(1, domain);
        remove.bind(2, key);
        return remove.isValid() && remove.step() == SQLITE_DONE;
    });
}

bool OSTDefaultsStore::synchronize()
{
    QMutexLocker locker(&m_mutex);
    if (!database())
        return false;
    if (m_file.execute("PRAGMA synchronous=FULL") && m_file.execute("PRAGMA wal_checkpoint(FULL)")
        && m_file.execute("PRAGMA synchronous=NORMAL"))
        return true;
    m_problems.append(u"flushing %1 failed: %2"_s.arg(m_file.path(), m_file.errorMessage()));
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
    Statement upsert(database(), "INSERT OR REPLACE INTO entries (domain, key, value) VALUES (?1, ?2, ?3)");
    upsert.bind(1, domain);
    upsert.bind(2, key);
    upsert.bind(3, archived);
    return upsert.isValid() && upsert.step() == SQLITE_DONE;
}

bool OSTDefaultsStore::insertDomainName(const QString &domain)
{
    Statement insert(database(), "INSERT OR IGNORE INTO domains (name) VALUES (?1)");
    insert.bind(1, domain);
    return insert.isValid() && insert.step() == SQLITE_DONE;
}



} // namespace ostrel
