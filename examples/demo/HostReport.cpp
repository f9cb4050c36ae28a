#include "HostReport.h"

#include <ostrel/Ostrel.h>

#include <QJsonDocument>
#include <QTime>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

namespace {

// The host logs what it received, but never a password in clear.
QVariantMap withSecretsHidden(QVariantMap fields)
{
    if (fields.contains(u"password"_s))
        fields.insert(u"password"_s, u"••••••••"_s);
    return fields;
}

} // namespace

QString HostReport::signedInUser()
{
    const OSTUser user = Ostrel::currentUser();
    if (!user.userID() || user.userID()->isEmpty())
        return u"Nobody is signed in."_s;
    return u"Signed in as <b>%1</b> (%2)"_s.arg(user.properties().value(u"name"_s).toString().toHtmlEscaped(),
                                               user.userID()->toHtmlEscaped());
}

QString HostReport::handOverEntry(const QString &callback, const QVariantMap &fields, const QString &outcome)
{
    const QByteArray json = QJsonDocument::fromVariant(withSecretsHidden(fields)).toJson(QJsonDocument::Indented);
    return u"%1  %2 → %3\n%4"_s.arg(QTime::currentTime().toString(u"HH:mm:ss"_s), callback, outcome,
                                   QString::fromUtf8(json).trimmed());
}

QString HostReport::nothingToShow()
{
    return u"Nothing to show for that experience now."_s;
}

} // namespace ostrel::demo
