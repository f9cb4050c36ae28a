#include "Endpoints.h"

#include "ExperienceLoader.h"
#include "HttpStatus.h"
#include "ServiceDatabase.h"

#include <QCryptographicHash>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QHash>
#include <QSet>
#include <QUrl>
#include <QUuid>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

const QByteArray okText = "OK";

double now()
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0;
}

QString compactText(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonObject objectOfText(const QVariant &text)
{
    return QJsonDocument::fromJson(text.toString().toUtf8()).object();
}

EndpointAnswer jsonAnswer(const QJsonObject &object)
{
    return {200, QJsonDocument(object).toJson(QJsonDocument::Compact)};
}

EndpointAnswer badRequest(const QString &reason)
{
    return {httpBadRequest, reason.toUtf8()};
}

// A string member, or a number written in decimal.
QString textOf(const QJsonValue &value)
{
    if (value.isDouble())
        return QString::number(static_cast<qlonglong>(value.toDouble()));
    return value.toString();
}

QJsonObject mergedObject(QJsonObject base, const QJsonObject &overlay)
{
    for (auto member = overlay.begin(); member != overlay.end(); ++member)
        base.insert(member.key(), member.value());
    return base;
}

QString userKeyOf(const QJsonObject &parameters)
{
    const QString userID = parameters.value(u"user_properties"_s).toObject().value(u"ost_user_id"_s).toString();
    if (!userID.isEmpty())
        return u"user:"_s + userID;
    const QString deviceID = parameters.value(u"device_id"_s).toString();
    return deviceID.isEmpty() ? u"anonymous"_s : u"device:"_s + deviceID;
}

} // namespace

Endpoints::Endpoints(ServiceDatabase &database, const ExperienceLoader &experience, LinePrinter printLine)
    : m_database(database), m_experience(experience), m_printLine(std::move(printLine))
{
}

const QHash<QString, Endpoints::Handler> &Endpoints::handlers()
{
    static const QHash<QString, Handler> table = {
        {u"launch_v3"_s, &Endpoints::launch},
        {u"event"_s, &Endpoints::event},
        {u"user_properties"_s, &Endpoints::userProperties},
        {u"verify_phone_number"_s, &Endpoints::verifyPhoneNumber},
        {u"tracking_link"_s, &Endpoints::trackingLink},
        {u"universal_link_click"_s, &Endpoints::universalLinkClick},
    };
    return table;
}

bool Endpoints::handles(const QString &endpoint) const
{
    return handlers().contains(endpoint);
}

EndpointAnswer Endpoints::answer(const QString &endpoint, const QJsonObject &parameters)
{
    const Handler handler = handlers().value(endpoint);
    return handler ? (this->*handler)(parameters) : EndpointAnswer{404, "unknown endpoint"};
}

QString Endpoints::verificationPin(const QString &token, const QString &phoneNumber, const QString &seed)
{
    const QByteArray digest =
        QCryptographicHash::hash((token + phoneNumber + seed).toUtf8(), QCryptographicHash::Md5).toHex();
    const quint64 number = digest.left(10).toULongLong(nullptr, 16);
    return u"%1"_s.arg(number % 10000, 4, 10, QLatin1Char('0'));
}

EndpointAnswer Endpoints::launch(const QJsonObject &parameters)
{
    QSet<QString> cachedVersions;
    for (const QJsonValue &version : parameters.value(u"cached_versions"_s).toArray())
        cachedVersions.insert(version.toString());

    QJsonObject response = m_experience.launchConfiguration();
    const QJsonObject delivery = m_experience.delivery(cachedVersions);
    for (auto member = delivery.begin(); member != delivery.end(); ++member)
        response.insert(member.key(), member.value());

    const QString userID = parameters.value(u"user_id"_s).toString();
    const QJsonObject stored = userID.isEmpty() ? QJsonObject() : storedUserProperties(u"user:"_s + userID);
    if (!stored.isEmpty()) {
        QJsonObject appUser = response.value(u"app_user"_s).toObject();
        appUser.insert(u"user_properties"_s, mergedObject(appUser.value(u"user_properties"_s).toObject(), stored));
        response.insert(u"app_user"_s, appUser);
    }
    return jsonAnswer(response);
}

EndpointAnswer Endpoints::event(const QJsonObject &parameters)
{
    if (parameters.value(u"events"_s).isArray()) {
        // One transaction per batch: a commit per event would make large batches slow to answer.
        m_database.execute(u"BEGIN"_s);
        for (const QJsonValue &single : parameters.value(u"events"_s).toArray()) {
            if (single.isObject())
                storeEvent(single.toObject());
        }
        m_database.execute(u"COMMIT"_s);
    } else {
        storeEvent(parameters);
    }
    return {200, okText};
}

void Endpoints::storeEvent(const QJsonObject &event)
{
    const QString identifier = textOf(event.value(u"ost_event_id"_s));
    m_database.execute(
        u"INSERT OR IGNORE INTO events (ost_event_id, event_type, parameters, received_at) VALUES (?, ?, ?, ?)"_s,
        {identifier.isEmpty() ? QVariant() : QVariant(identifier), event.value(u"event_type"_s).toString(),
         compactText(event), now()});
}

EndpointAnswer Endpoints::userProperties(const QJsonObject &parameters)
{
    const QString userKey = userKeyOf(parameters);
    const QJsonObject merged =
        mergedObject(storedUserProperties(userKey), parameters.value(u"user_properties"_s).toObject());
    m_database.execute(u"INSERT OR REPLACE INTO user_properties (user_key, properties, updated_at) VALUES (?, ?, ?)"_s,
                       {userKey, compactText(merged), now()});
    if (parameters.value(u"return_properties"_s).toString() == u"1"_s)
        return jsonAnswer(QJsonObject{{u"user_properties"_s, merged}});
    return jsonAnswer(QJsonObject());
}

QJsonObject Endpoints::storedUserProperties(const QString &userKey)
{
    const QList<ServiceDatabase::Row> rows =
        m_database.query(u"SELECT properties FROM user_properties WHERE user_key = ?"_s, {userKey});
    return rows.isEmpty() ? QJsonObject() : objectOfText(rows.first().value(0));
}

EndpointAnswer Endpoints::verifyPhoneNumber(const QJsonObject &parameters)
{
    const QString phoneNumber = parameters.value(u"phone_number"_s).toString();
    const QString seed = textOf(parameters.value(u"seed"_s));
    const QString token = parameters.value(u"token"_s).toString();
    if (phoneNumber.isEmpty() || seed.isEmpty())
        return badRequest(u"\"phone_number\" and \"seed\" are required"_s);
    const QString pin = verificationPin(token, phoneNumber, seed);
    m_database.execute(u"INSERT INTO verification_pins (phone_number, seed, pin, created_at) VALUES (?, ?, ?, ?)"_s,
                       {phoneNumber, seed, pin, now()});
    m_printLine(u"pin: %1 %2"_s.arg(phoneNumber, pin));
    return {200, okText};
}

EndpointAnswer Endpoints::trackingLink(const QJsonObject &parameters)
{
    const QString targeting = parameters.value(u"targeting"_s).toString();
    if (targeting.isEmpty())
        return badRequest(u"\"targeting\" is required"_s);
    const QString linkID = QUuid::createUuid().toString(QUuid::Id128).left(12);
    const QString url = m_linkBase + u'/' + linkID;
    m_database.execute(u"INSERT INTO tracking_links (link_id, url, targeting, additional_params, sender, created_at) "
                       "VALUES (?, ?, ?, ?, ?, ?)"_s,
                       {linkID, url, targeting, compactText(parameters.value(u"additional_params"_s).toObject()),
                        compactText(parameters.value(u"user_properties"_s).toObject()), now()});
    return jsonAnswer(QJsonObject{{u"tracking_link"_s, url}});
}

EndpointAnswer Endpoints::universalLinkClick(const QJsonObject &parameters)
{
    const QString linkID = QUrl(parameters.value(u"url"_s).toString()).fileName();
    const QList<ServiceDatabase::Row> rows = m_database.query(
        u"SELECT targeting, additional_params, sender FROM tracking_links WHERE link_id = ?"_s, {linkID});
    if (linkID.isEmpty() || rows.isEmpty())
        return jsonAnswer(QJsonObject());
    const QString targeting = rows.first().value(0).toString();
    const QJsonObject attributionParameters = objectOfText(rows.first().value(1));
    QJsonObject attribution{
        {u"return_referral"_s, 1},
        {u"return_link_id"_s, linkID},
        {u"return_link_name"_s, targeting},
        {u"return_targeting_id"_s, linkID},
        {u"return_targeting_key"_s, targeting},
        {u"return_targeting_name"_s, targeting},
        {u"return_source_id"_s, u"devserver"_s},
        {u"return_source_name"_s, u"ostrel-devserver"_s},
        {u"return_attribution_params"_s, attributionParameters},
        {u"return_sender"_s, objectOfText(rows.first().value(2))},
    };
    if (attributionParameters.value(u"deeplink"_s).isString())
        attribution.insert(u"return_deeplink"_s, attributionParameters.value(u"deeplink"_s));
    return jsonAnswer(attribution);
}

} // namespace ostrel::devserver
