#pragma once

#include <QMap>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel::demo {

// The demo host's own user records: what a real application keeps on its back end. Sign-ups add
// an account keyed by e-mail address (compared without case), log-ins must name a known address
// with its password. Kept in memory for the life of the process. GUI thread.
class DemoAccounts {
public:
    struct Account {
        QString userID;
        QString name;
        QString email;
    };

    // Whether an account uses this address already.
    bool isRegistered(const QString &email) const;

    // Adds an account from the sign-up fields ("name", "email", "password"); nullopt when the
    // address is missing or taken.
    std::optional<Account> signUp(const QVariantMap &fields);

    // The account for the log-in fields ("email", "password"); nullopt for an unknown address or
    // a wrong password.
    std::optional<Account> logIn(const QVariantMap &fields) const;

private:
    struct Record {
        Account account;
        QString password;
    };

    static QString keyOf(const QString &email);

    QMap<QString, Record> m_records; // by lower-cased, trimmed address
};

} // namespace ostrel::demo
