#pragma once

#include "HttpStatus.h"

#include <QByteArray>
#include <QHash>
#include <QJsonObject>
#include <QString>

#include <functional>

namespace ostrel::devserver {

class ExperienceLoader;
class ServiceDatabase;

// The plaintext answer of an endpoint, encrypted by the caller when the status is 200.
struct EndpointAnswer {
    int status = httpOK;
    QByteArray body;
};

// The service's endpoints, each taking the decrypted parameters:
//   launch_v3             the experience delivery plus the configured launch keys, and the
//                         stored properties of "user_id" under "app_user"
//   event                 stores each event once by "ost_event_id" (one event or {"events": [...]}); "OK"
//   user_properties       merges "user_properties" into what is stored for the user
//                         ("ost_user_id", else "device_id"); returns the merge when
//                         "return_properties" is "1"
//   verify_phone_number   derives the PIN the SDK expects, stores it and prints
//                         "pin: <phone number> <pin>"; "OK"
//   tracking_link         makes a link <link base>/<id> for "targeting" and its parameters
//   universal_link_click  resolves a link made above into the "return_*" attribution keys
class Endpoints {
public:
    using LinePrinter = std::function<void(const QString &line)>;

    // `database` and `experience` must outlive the endpoints.
    Endpoints(ServiceDatabase &database, const ExperienceLoader &experience, LinePrinter printLine);

    // Where tracking links point, e.g. "http://localhost:8080/l".
    void setLinkBase(const QString &linkBase) { m_linkBase = linkBase; }

    bool handles(const QString &endpoint) const;
    EndpointAnswer answer(const QString &endpoint, const QJsonObject &parameters);

    // token + phone number + seed, MD5, the first 10 hex digits as a number, modulo 10000, as
    // four digits.
    static QString verificationPin(const QString &token, const QString &phoneNumber, const QString &seed);

private:
    using Handler = EndpointAnswer (Endpoints::*)(const QJsonObject &parameters);
    static const QHash<QString, Handler> &handlers();

    EndpointAnswer launch(const QJsonObject &parameters);
    EndpointAnswer event(const QJsonObject &parameters);
    EndpointAnswer userProperties(const QJsonObject &parameters);
    EndpointAnswer verifyPhoneNumber(const QJsonObject &parameters);
    EndpointAnswer trackingLink(const QJsonObject &parameters);
    EndpointAnswer universalLinkClick(const QJsonObject &parameters);

    void storeEvent(const QJsonObject &event);
    QJsonObject storedUserProperties(const QString &userKey);

    ServiceDatabase &m_database;
    const ExperienceLoader &m_experience;
    LinePrinter m_printLine;
    QString m_linkBase;
};

} // namespace ostrel::devserver
