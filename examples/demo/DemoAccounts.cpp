#include "DemoAccounts.h"

#include <QCryptographicHash>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

bool DemoAccounts::isRegistered(const QString &email) const
{
    return m_records.contains(keyOf(email));
}

std::optional<DemoAccounts::Account> DemoAccounts::signUp(const QVariantMap &fields)
{
    const QString key = keyOf(fields.value(u"email"_s).toString());
    if (key.isEmpty() || m_records.contains(key))
        return std::nullopt;
    // A stable identifier derived from the address, as a back end would hand out.
    const QByteArray digest = QCryptographicHash::hash(key.toUtf8(), QCryptographicHash::Sha256);
    const Account account{u"user-"_s + QString::fromLatin1(digest.toHex().left(12)),
                          fields.value(u"name"_s).toString().trimmed(), fields.value(u"email"_s).toString().trimmed()};
    m_records.insert(key, Record{account, fields.value(u"password"_s).toString()});
    return account;
}

std::optional<DemoAccounts::Account> DemoAccounts::logIn(const QVariantMap &fields) const
{
    const auto record = m_records.constFind(keyOf(fields.value(u"email"_s).toString()));
    if (record == m_records.cend() || record->password != fields.value(u"password"_s).toString())
        return std::nullopt;
    return record->account;
}

QString DemoAccounts::keyOf(const QString &email)
{
    return email.trimmed().toLower();
}

} // namespace ostrel::demo
