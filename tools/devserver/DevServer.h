#pragma once

#include "AdminRoute.h"
#include "DevServerOptions.h"
#include "Endpoints.h"
#include "EnvelopeCrypto.h"
#include "ExperienceLoader.h"
#include "FaultSwitches.h"
#include "RequestRecorder.h"
#include "ServerIdentity.h"
#include "ServiceClock.h"
#include "ServiceDatabase.h"

#include <QHttpServer>
#include <QObject>
#include <QUrl>

#include <functional>
#include <memory>

namespace ostrel::devserver {

struct Response;

// The development service: the SDK's endpoints behind the payload envelope, images from the
// experience folder and the admin route, on one QHttpServer. Lives on the thread that runs the
// event loop (the main thread of ostrel-devserver).
//
//   POST /<endpoint>         envelope in, ciphertext out (400 with a reason for anything that
//                            is not an envelope of this service, 404 for unknown endpoints)
//   GET  /images/<name>      files of <experience>/images
//   GET|POST|DELETE /_admin/faults, GET|POST /_admin/clock   see AdminRoute
class DevServer : public QObject {
    Q_OBJECT

public:
    using LinePrinter = Endpoints::LinePrinter;

    // Opens the database and the identity; nothing, with `error` set, when either fails.
    static std::unique_ptr<DevServer> create(const DevServerOptions &options, LinePrinter printLine, QString &error);

    // Starts listening; returns the port, or 0 with `error` set.
    quint16 listen(QString &error);

    const ServerIdentity &identity() const { return m_identity; }
    QUrl serviceURL() const;

private:
    DevServer(const DevServerOptions &options, ServerIdentity identity, std::unique_ptr<ServiceDatabase> database,
              LinePrinter printLine);

    void addRoutes();
    void handleEndpoint(const QString &endpoint, const QHttpServerRequest &request, QHttpServerResponder &&responder);
    void handleImage(const QString &name, QHttpServerResponder &&responder);
    Response answerEnvelope(const QString &endpoint, const OpenedEnvelope &envelope, const Fault &fault);
    QHttpServerResponse handleAdmin(const QHttpServerRequest &request);
    QHttpServerResponse handleClock(const QHttpServerRequest &request);

    const DevServerOptions m_options;
    const ServerIdentity m_identity;
    const std::unique_ptr<ServiceDatabase> m_database;
    const EnvelopeCrypto m_crypto;
    RequestRecorder m_recorder;
    ExperienceLoader m_experience;
    Endpoints m_endpoints;
    FaultSwitches m_faults;
    ServiceClock m_clock;
    AdminRoute m_admin;
    QHttpServer m_server;
    quint16 m_port = 0;
};

} // namespace ostrel::devserver
