#include "network/OSTRequestManager.h"

#include "core/OSTLogging.h"
#include "network/OSTEncryption.h"
#include "network/OSTNetworkStatistics.h"
#include "network/OSTRequestEnvelope.h"
#include "network/OSTResponseDecoder.h"
#include "network/OSTServiceConfiguration.h"
#include "network/OSTURLErrorTable.h"
#include "platform/OSTClock.h"

#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int httpOK = 200;
constexpr int httpInternalServerError = 500;
constexpr int httpUnauthorized = 401;
constexpr double imageScale = 2.0;

QString describe(const std::optional<OSTError> &error)
{
    return error ? u"%1 %2: %3"_s.arg(error->domain).arg(error->code).arg(error->message) : u"none"_s;
}

} // namespace

OSTRequestManager &OSTRequestManager::sharedManager()
{
    // Never destroyed: its queues may still be delivering when the process exits.
    static OSTRequestManager *manager = new OSTRequestManager();
    return *manager;
}

OSTRequestManager::OSTRequestManager()
    : m_dataSession(OSTURLSession::create(u"com.ostrelhq.requestManager.dataSession"_s, dataSessionTimeout)),
      m_downloadSession(
          OSTURLSession::create(u"com.ostrelhq.requestManager.downloadSession"_s, downloadSessionTimeout)),
      m_sessionReleaseQueue(u"com.ostrelhq.requestManager.sessionRelease"_s)
{
}

namespace {

// A body completion that decodes the body with `decode` and hands the result to `completion`.
template <typename Decode, typename Completion>
OSTRequestManager::BodyCompletion decodingCompletion(const QString &endpoint, Decode decode,
                                                     const Completion &completion)
{
    return [endpoint, decode, completion](const auto &body, const auto &error) {
        const auto decoded = decode(endpoint, body, error);
        if (completion)
            completion(decoded.value, decoded.error);
    };
}

} // namespace

OSTRequestManager::Task OSTRequestManager::apiRequestWithEndpoint(const QString &endpoint,
                                                                  const QVariantMap &parameters,
                                                                  const Completion &completion)
{
    Task task = apiRequestWithEndpoint(
        endpoint, parameters, m_dataSession,
        decodingCompletion(endpoint, &OSTResponseDecoder::dictionaryFromBody, completion));
    task->resume();
    return task;
}

OSTRequestManager::Task OSTRequestManager::apiRequestWithEndpoint(const QString &endpoint,
                                                                  const QVariantMap &parameters,
                                                                  double timeout,
                                                                  const Completion &completion)
{
    if (timeout == m_dataSession->timeoutInterval())
        return apiRequestWithEndpoint(endpoint, parameters, completion);

    std::shared_ptr<OSTURLSession> session;
    {
        QMutexLocker locker(&m_mutex);
        session = OSTURLSession::create(
            u"com.ostrelhq.requestManager.session.%1"_s.arg(++m_customSessionSerial), timeout);
    }
    auto identifier = std::make_shared<quint64>(0);
    const BodyCompletion decodeAndComplete =
        decodingCompletion(endpoint, &OSTResponseDecoder::dictionaryFromBody, completion);
    Task task = apiRequestWithEndpoint(endpoint, parameters, session,
                                       [this, decodeAndComplete, identifier](const auto &body, const auto &error) {
        std::shared_ptr<OSTURLSession> finished = takeCustomSession(*identifier);
        decodeAndComplete(body, error);
        // Moved, so that the last reference is the one dropped on the release queue.
        m_sessionReleaseQueue.async([session = std::move(finished)]() mutable { session.reset(); });
    });
    *identifier = task->taskIdentifier();
    {
        QMutexLocker locker(&m_mutex);
        m_customSessions.emplace(task->taskIdentifier(), std::move(session));
    }
    task->resume();
    return task;
}

OSTRequestManager::Task OSTRequestManager::apiStringRequestWithEndpoint(const QString &endpoint,
                                                                        const QVariantMap &parameters,
                                                                        const StringCompletion &completion)
{
    Task task = apiRequestWithEndpoint(
        endpoint, parameters, m_dataSession,
        decodingCompletion(endpoint, &OSTResponseDecoder::stringFromBody, completion));
    task->resume();
    return task;
}

OSTRequestManager::Task OSTRequestManager::apiRequestWithEndpoint(const QString &endpoint,
                                                                  const QVariantMap &parameters,
                                                                  const std::shared_ptr<OSTURLSession> &session,
                                                                  const BodyCompletion &completion)
{
    OSTLogging::logDebug(u"Sending API request to endpoint \"%1\" with parameters: %2"_s, endpoint, parameters);
    return apiRequestWithBody(endpoint, OSTRequestEnvelope::bodyForParameters(parameters), session, completion);
}

OSTRequestManager::Task OSTRequestManager::apiStringRequestWithSerializedParameters(const QString &endpoint,
                                                                                    const QByteArray &json,
                                                                                    const StringCompletion &completion)
{
    if (OSTLogging::loggingLevel() >= OSTLoggingLevelDebug)
        OSTLogging::logDebug(u"Sending API request to endpoint \"%1\" with parameters: %2"_s, endpoint, json);
    Task task = apiRequestWithBody(endpoint, OSTRequestEnvelope::bodyForSerializedParameters(json), m_dataSession,
                                   decodingCompletion(endpoint, &OSTResponseDecoder::stringFromBody, completion));
    task->resume();
    return task;
}

OSTRequestManager::Task OSTRequestManager::apiRequestWithBody(const QString &endpoint, const QByteArray &body,
                                                              const std::shared_ptr<OSTURLSession> &session,
                                                              const BodyCompletion &completion)
{
    QNetworkRequest request = requestWithURL(OSTServiceConfiguration::sharedConfiguration().urlForEndpoint(endpoint));
    request.setRawHeader("Content-type", "application/json");
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    return session->dataTask(request, body, [this, endpoint, completion](const OSTURLTaskResult &result) {
        if (completion)
            completeAPIRequest(endpoint, result, completion);
    });
}

OSTRequestManager::Task OSTRequestManager::imageRequestWithURL(const QUrl &url, const ImageCompletion &completion)
{
    QNetworkRequest request = requestWithURL(url);
    request.setRawHeader("Accept", "image/*");
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::PreferNetwork);
    request.setAttribute(QNetworkRequest::HttpPipeliningAllowedAttribute, true);
    const double startTime = OSTClock::current().monotonicNow();
    Task task = m_downloadSession->downloadTask(request, [this, startTime, completion](const OSTURLTaskResult &result) {
        completeImageRequest(result, startTime, completion);
    });
    task->resume();
    return task;
}

int OSTRequestManager::customSessionCount() const
{
    QMutexLocker locker(&m_mutex);
    return static_cast<int>(m_customSessions.size());
}

QNetworkRequest OSTRequestManager::requestWithURL(const QUrl &url)
{
    QNetworkRequest request(url);
    if (url.scheme() == u"https"_s)
        request.setSslConfiguration(OSTServiceConfiguration::sharedConfiguration().sslConfigurationForURL(url));
    return request;
}

void OSTRequestManager::completeAPIRequest(const QString &endpoint, const OSTURLTaskResult &result,
                                           const BodyCompletion &completion) const
{
    if (!result.statusCode) {
        OSTLogging::logDebug(u"API request to endpoint \"%1\" failed with error: %2"_s, endpoint, describe(result.error));
        completion(std::nullopt, result.error);
        return;
    }
    const int status = *result.statusCode;
    if (!result.data || status != httpOK) {
        if (status == httpInternalServerError)
            OSTNetworkStatistics::reportInternalServerError(result.url);
        const OSTError error = !result.error || status == httpUnauthorized
            ? OSTURLErrorTable::errorForHTTPStatus(status)
            : *result.error;
        OSTLogging::logDebug(u"API request to endpoint \"%1\" failed with error: %2"_s, endpoint, describe(error));
        completion(std::nullopt, error);
        return;
    }
    if (result.data->isEmpty()) {
        OSTLogging::logDebug(u"API request to endpoint \"%1\" got an empty answer."_s, endpoint);
        completion(std::nullopt, OSTURLErrorTable::errorWithCode(OSTURLErrorZeroByteResource, u"The answer is empty."_s));
        return;
    }
    const std::optional<QByteArray> plaintext = OSTEncryption::decryptData(*result.data);
    if (!plaintext) {
        OSTLogging::logDebug(u"The answer of endpoint \"%1\" (%2 bytes) could not be decrypted."_s, endpoint,
                             result.data->size());
        completion(std::nullopt, OSTURLErrorTable::errorWithCode(OSTURLErrorCannotDecodeContentData,
                                                                 u"The answer could not be decrypted."_s));
        return;
    }
    completion(plaintext, std::nullopt);
}

void OSTRequestManager::completeImageRequest(const OSTURLTaskResult &result, double startTime,
                                             const ImageCompletion &completion) const
{
    const bool downloaded = result.statusCode == httpOK && result.data;
    using Outcome = OSTNetworkStatistics::Outcome;
    Outcome outcome = Outcome::Failure;
    if (downloaded)
        outcome = Outcome::Success;
    else if (result.error && result.error->is(NSURLErrorDomain, OSTURLErrorTimedOut))
        outcome = Outcome::Timeout;
    OSTNetworkStatistics::reportImageDownload(result.url, OSTClock::current().monotonicNow() - startTime, outcome);

    if (!downloaded) {
        const OSTError error = result.error ? *result.error
                                            : OSTURLErrorTable::errorForHTTPStatus(result.statusCode.value_or(0));
        OSTLogging::logDebug(u"Image download from %1 failed with error: %2"_s, result.url, describe(error));
        if (completion)
            completion(QImage(), error);
        return;
    }
    QImage image = QImage::fromData(*result.data);
    if (image.isNull()) {
        OSTLogging::logDebug(u"The image at %1 could not be decoded."_s, result.url);
        if (completion)
            completion(QImage(), OSTURLErrorTable::errorWithCode(OSTURLErrorCannotDecodeContentData,
                                                                 u"The image could not be decoded."_s));
        return;
    }
    image.setDevicePixelRatio(imageScale);
    if (completion)
        completion(image, std::nullopt);
}

std::shared_ptr<OSTURLSession> OSTRequestManager::takeCustomSession(quint64 taskIdentifier)
{
    QMutexLocker locker(&m_mutex);
    const auto entry = m_customSessions.find(taskIdentifier);
    if (entry == m_customSessions.end())
        return nullptr;
    std::shared_ptr<OSTURLSession> session = std::move(entry->second);
    m_customSessions.erase(entry);
    return session;
}

} // namespace ostrel
