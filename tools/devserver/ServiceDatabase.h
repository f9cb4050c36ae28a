#pragma once

#include <QList>
#include <QString>
#include <QVariant>

#include <memory>

struct sqlite3;

namespace ostrel::devserver {

// The service's SQLite database (WAL, so tests may read it while the service writes). Holds
// every decrypted request and the state of the endpoints: events, user properties, verification
// PINs and tracking links. Owned and used by the service's one thread.
class ServiceDatabase {
public:
    using Row = QVariantList;

    static std::unique_ptr<ServiceDatabase> open(const QString &path, QString &error);
    ~ServiceDatabase();

    ServiceDatabase(const ServiceDatabase &) = delete;
    ServiceDatabase &operator=(const ServiceDatabase &) = delete;

    // Runs one statement with `bindings` for its "?" placeholders (strings, numbers or null).
    // Returns whether it succeeded; failures are written to standard error.
    bool execute(const QString &sql, const QVariantList &bindings = {});
    // The rows of a query; empty on failure.
    QList<Row> query(const QString &sql, const QVariantList &bindings = {});

private:
    explicit ServiceDatabase(sqlite3 *database);
    bool run(const QString &sql, const QVariantList &bindings, QList<Row> *rows);
    bool createSchema();

    sqlite3 *m_database;
};

} // namespace ostrel::devserver
