#include "AdminRoute.h"

#include "FaultSwitches.h"
#include "HttpStatus.h"
#include "ServiceClock.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <optional>
#include <vector>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

QJsonObject errorBody(const QString &message)
{
    return QJsonObject{{u"error"_s, message}};
}

const AdminRoute::Answer remoteRefusal{httpForbidden, errorBody(u"the admin route answers loopback clients only"_s)};

} // namespace

AdminRoute::AdminRoute(FaultSwitches &faults, ServiceClock &clock) : m_faults(faults), m_clock(clock) {}

AdminRoute::Answer AdminRoute::handle(Method method, const QHostAddress &client, const QByteArray &body)
{
    if (!client.isLoopback())
        return remoteRefusal;
    switch (method) {
    case Method::Get:
        return {httpOK, m_faults.toJson()};
    case Method::Delete:
        m_faults.clear();
        return {httpOK, m_faults.toJson()};
    case Method::Post:
        return setFaults(body);
    }
    return {httpBadRequest, errorBody(u"unknown method"_s)};
}

AdminRoute::Answer AdminRoute::setFaults(const QByteArray &body)
{
    const QJsonDocument document = QJsonDocument::fromJson(body);
    QJsonArray objects;
    if (document.isObject())
        objects.append(document.object());
    else if (document.isArray())
        objects = document.array();
    else
        return {httpBadRequest, errorBody(u"the body must be a fault object or an array of them"_s)};

    // All or nothing: a bad entry leaves the switches as they were.
    std::vector<std::pair<QString, Fault>> parsed;
    for (const QJsonValue &value : std::as_const(objects)) {
        QString error;
        const QJsonObject object = value.toObject();
        const std::optional<Fault> fault = value.isObject() ? Fault::fromJson(object, error) : std::nullopt;
        if (!fault)
            return {httpBadRequest, errorBody(error.isEmpty() ? u"a fault must be an object"_s : error)};
        parsed.emplace_back(object.value(u"endpoint"_s).toString(FaultSwitches::anyEndpoint), *fault);
    }
    for (const auto &[endpoint, fault] : parsed)
        m_faults.set(endpoint, fault);
    return {httpOK, m_faults.toJson()};
}

AdminRoute::Answer AdminRoute::handleClock(Method method, const QHostAddress &client, const QByteArray &body)
{
    if (!client.isLoopback())
        return remoteRefusal;
    switch (method) {
    case Method::Get:
        return {httpOK, clockState()};
    case Method::Post:
        return advanceClock(body);
    case Method::Delete:
        break;
    }
    return {httpBadRequest, errorBody(u"the clock answers GET and POST"_s)};
}

AdminRoute::Answer AdminRoute::advanceClock(const QByteArray &body)
{
    if (m_clock.kind() == ServiceClock::Kind::Real)
        return {httpConflict, errorBody(u"the service runs on real time; start it with --driven-clock"_s)};
    const QJsonValue advance = QJsonDocument::fromJson(body).object().value(u"advance"_s);
    if (!advance.isDouble() || advance.toDouble() < 0.0 || advance.toDouble() > 86400.0)
        return {httpBadRequest, errorBody(u"the body must be {\"advance\": seconds from 0 to 86400}"_s)};
    m_clock.advance(advance.toDouble());
    return {httpOK, clockState()};
}

QJsonValue AdminRoute::clockState() const
{
    return QJsonObject{{u"seconds"_s, m_clock.elapsedSeconds()}, {u"pending"_s, m_clock.pendingCount()}};
}

} // namespace ostrel::devserver
