#include "DevServer.h"

#include "HttpStatus.h"
#include "ResponseWriter.h"

#include <QFile>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QHttpServerResponse>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMimeDatabase>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

constexpr qsizetype oversizedLength = 17 * 1024 * 1024;

const QString imagesFaultKey = u"images"_s;

Response textResponse(int status, const QByteArray &text)
{
    return Response{status, text, "text/plain"};
}

QByteArray faultyCiphertext(Fault::Body body, const QByteArray &plaintext, const PayloadKey &key)
{
    switch (body) {
    case Fault::Body::Normal:
        return EnvelopeCrypto::seal(plaintext, key);
    case Fault::Body::Garbage:
        return "this is not ciphertext";
    case Fault::Body::BadPadding:
        return EnvelopeCrypto::sealWithoutPadding(QByteArray(16, '\0'), key);
    case Fault::Body::NotJSON:
        return EnvelopeCrypto::seal("this is not JSON", key);
    case Fault::Body::Array:
        return EnvelopeCrypto::seal("[1,2,3]", key);
    case Fault::Body::Empty:
        return {};
    case Fault::Body::Oversized:
        return QByteArray(oversizedLength, 'x');
    }
    return {};
}

void logRejection(const QString &endpoint, const QString &reason)
{
    QTextStream(stderr) << "rejected request to " << endpoint << ": " << reason << Qt::endl;
}

AdminRoute::Method adminMethod(const QHttpServerRequest &request)
{
    if (request.method() == QHttpServerRequest::Method::Post)
        return AdminRoute::Method::Post;
    if (request.method() == QHttpServerRequest::Method::Delete)
        return AdminRoute::Method::Delete;
    return AdminRoute::Method::Get;
}

QHttpServerResponse jsonResponse(const AdminRoute::Answer &answer)
{
    const QJsonDocument document = answer.body.isArray() ? QJsonDocument(answer.body.toArray())
                                                         : QJsonDocument(answer.body.toObject());
    return QHttpServerResponse("application/json", document.toJson(QJsonDocument::Compact),
                               static_cast<QHttpServerResponse::StatusCode>(answer.status));
}

} // namespace

std::unique_ptr<DevServer> DevServer::create(const DevServerOptions &options, LinePrinter printLine, QString &error)
{
    std::optional<ServerIdentity> identity =
        ServerIdentity::loadOrCreate(options.keyPath(), options.certificatePath(), error);
    if (!identity)
        return nullptr;
    std::unique_ptr<ServiceDatabase> database = ServiceDatabase::open(options.dataPath, error);
    if (!database)
        return nullptr;
    return std::unique_ptr<DevServer>(new DevServer(options, std::move(*identity), std::move(database),
                                                    std::move(printLine)));
}

DevServer::DevServer(const DevServerOptions &options, ServerIdentity identity,
                     std::unique_ptr<ServiceDatabase> database, LinePrinter printLine)
    : m_options(options),
      m_identity(std::move(identity)),
      m_database(std::move(database)),
      m_crypto(m_identity.privateKey()),
      m_recorder(*m_database),
      m_experience(options.experienceFolder, options.configurationPath),
      m_endpoints(*m_database, m_experience, std::move(printLine)),
      m_clock(options.clock),
      m_admin(m_faults, m_clock)
{
    for (const auto &[endpoint, fault] : options.faults)
        m_faults.set(endpoint, fault);
    addRoutes();
}

quint16 DevServer::listen(QString &error)
{
    if (m_options.tls)
        m_server.sslSetup(m_identity.sslCertificate(), m_identity.sslKey());
    m_port = m_server.listen(m_options.address, m_options.port);
    if (m_port == 0) {
        error = u"cannot listen on %1 port %2"_s.arg(m_options.address.toString()).arg(m_options.port);
        return 0;
    }
    m_endpoints.setLinkBase(m_options.linkBase.isEmpty() ? serviceURL().toString() + u"/l"_s : m_options.linkBase);
    return m_port;
}

QUrl DevServer::serviceURL() const
{
    QUrl url;
    url.setScheme(m_options.tls ? u"https"_s : u"http"_s);
    const bool loopback = m_options.address.isLoopback() || m_options.address == QHostAddress::Any
        || m_options.address == QHostAddress::AnyIPv4;
    url.setHost(loopback ? u"127.0.0.1"_s : m_options.address.toString());
    url.setPort(m_port);
    return url;
}

void DevServer::addRoutes()
{
    m_server.route(u"/_admin/faults"_s,
                   QHttpServerRequest::Method::Get | QHttpServerRequest::Method::Post
                       | QHttpServerRequest::Method::Delete,
                   [this](const QHttpServerRequest &request) { return handleAdmin(request); });
    m_server.route(u"/_admin/clock"_s, QHttpServerRequest::Method::Get | QHttpServerRequest::Method::Post,
                   [this](const QHttpServerRequest &request) { return handleClock(request); });
    m_server.route(u"/images/<arg>"_s, QHttpServerRequest::Method::Get,
                   [this](const QString &name, QHttpServerResponder &&responder) {
                       handleImage(name, std::move(responder));
                   });
    m_server.route(u"/<arg>"_s, QHttpServerRequest::Method::Post,
                   [this](const QString &endpoint, const QHttpServerRequest &request, QHttpServerResponder &&responder) {
                       handleEndpoint(endpoint, request, std::move(responder));
                   });
}

void DevServer::handleEndpoint(const QString &endpoint, const QHttpServerRequest &request,
                               QHttpServerResponder &&responder)
{
    QString error;
    const std::optional<OpenedEnvelope> envelope = m_crypto.open(request.body(), error);
    if (!envelope) {
        logRejection(endpoint, error);
        ResponseWriter::send(std::move(responder), textResponse(httpBadRequest, error.toUtf8()), Fault(), m_clock);
        return;
    }
    m_recorder.record(endpoint, envelope->parameters);
    if (!m_endpoints.handles(endpoint)) {
        logRejection(endpoint, u"unknown endpoint"_s);
        ResponseWriter::send(std::move(responder), textResponse(httpNotFound, "unknown endpoint"), Fault(), m_clock);
        return;
    }
    const Fault fault = m_faults.take(endpoint, request.body().size()).value_or(Fault());
    ResponseWriter::send(std::move(responder), answerEnvelope(endpoint, *envelope, fault), fault, m_clock);
}

Response DevServer::answerEnvelope(const QString &endpoint, const OpenedEnvelope &envelope, const Fault &fault)
{
    // A request that is to fail outright is not acted on, as a failing service would not.
    if (fault.status)
        return textResponse(*fault.status, "fault: status " + QByteArray::number(*fault.status));
    if (fault.connection == Fault::Connection::Drop)
        return {};
    const EndpointAnswer answer = m_endpoints.answer(endpoint, envelope.parameters);
    if (answer.status != httpOK)
        return textResponse(answer.status, answer.body);
    return Response{httpOK, faultyCiphertext(fault.body, answer.body, envelope.payloadKey)};
}

void DevServer::handleImage(const QString &name, QHttpServerResponder &&responder)
{
    const Fault fault = m_faults.take(imagesFaultKey).value_or(Fault());
    const QString path = m_experience.imagePath(name);
    QFile file(path);
    if (fault.status || path.isEmpty() || !file.open(QIODevice::ReadOnly)) {
        const int status = fault.status.value_or(httpNotFound);
        ResponseWriter::send(std::move(responder), textResponse(status, "no image"), fault, m_clock);
        return;
    }
    const QByteArray mimeType = QMimeDatabase().mimeTypeForFile(path).name().toLatin1();
    ResponseWriter::send(std::move(responder), Response{httpOK, file.readAll(), mimeType}, fault, m_clock);
}

QHttpServerResponse DevServer::handleAdmin(const QHttpServerRequest &request)
{
    return jsonResponse(m_admin.handle(adminMethod(request), request.remoteAddress(), request.body()));
}

QHttpServerResponse DevServer::handleClock(const QHttpServerRequest &request)
{
    return jsonResponse(m_admin.handleClock(adminMethod(request), request.remoteAddress(), request.body()));
}

} // namespace ostrel::devserver
