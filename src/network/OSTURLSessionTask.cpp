#include "network/OSTURLSessionTask.h"

#include "network/OSTURLErrorTable.h"
#include "network/OSTURLSession.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QSslError>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::atomic<quint64> nextTaskIdentifier{1};

} // namespace

OSTURLSessionTask::OSTURLSessionTask(std::weak_ptr<OSTURLSession> session, Method method,
                                     const QNetworkRequest &request, const QByteArray &body,
                                     Completion completion)
    : m_session(std::move(session)),
      m_method(method),
      m_request(request),
      m_body(body),
      m_identifier(nextTaskIdentifier.fetch_add(1)),
      m_completion(std::move(completion))
{
}

void OSTURLSessionTask::resume()
{
    State expected = State::Suspended;
    if (!m_state.compare_exchange_strong(expected, State::Running))
        return;
    const std::shared_ptr<OSTURLSession> session = m_session.lock();
    if (!session) {
        complete({url(), std::nullopt, std::nullopt,
                  OSTURLErrorTable::errorWithCode(OSTURLErrorCancelled, u"The session is gone."_s)});
        return;
    }
    session->delegateQueue().async([self = shared_from_this()] { self->start(); });
}

void OSTURLSessionTask::cancel()
{
    m_cancelRequested = true;
    const std::shared_ptr<OSTURLSession> session = m_session.lock();
    if (!session || m_state.load() != State::Running)
        return;
    session->delegateQueue().async([self = shared_from_this()] { self->abortWith(Failure::Cancelled); });
}

void OSTURLSessionTask::start()
{
    const std::shared_ptr<OSTURLSession> session = m_session.lock();
    // A session whose queue is stopping (the application is ending) has no manager left.
    if (!session || m_cancelRequested || !session->networkAccessManager()) {
        complete({url(), std::nullopt, std::nullopt,
                  OSTURLErrorTable::errorWithCode(OSTURLErrorCancelled, u"The request was cancelled."_s)});
        return;
    }
    if (!url().isValid()) {
        complete({url(), std::nullopt, std::nullopt,
                  OSTURLErrorTable::errorWithCode(OSTURLErrorBadURL, u"No valid service URL."_s)});
        return;
    }
    QNetworkAccessManager *manager = session->networkAccessManager();
    QNetworkReply *reply = m_method == Method::Post ? manager->post(m_request, m_body)
                                                    : manager->get(m_request);
    m_reply = reply;
    OSTURLSession::requestReached(OSTURLSession::RequestStage::Started);
    watchReply(reply);
    m_clock = OSTClock::currentShared();
    m_timeoutTimer = m_clock->schedule(session->timeoutInterval(), reply,
                                       [self = shared_from_this()] { self->abortWith(Failure::TimedOut); });
}

void OSTURLSessionTask::watchReply(QNetworkReply *reply)
{
    // The reply owns these connections; they hold the task alive until the reply is deleted.
    const std::shared_ptr<OSTURLSessionTask> self = shared_from_this();
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [self] { self->checkDeclaredLength(); });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply,
                     [self](qint64 received, qint64) { self->checkReceivedLength(received); });
    QObject::connect(reply, &QNetworkReply::sslErrors, reply,
                     [self](const QList<QSslError> &errors) { self->m_certificateRefused = !errors.isEmpty(); });
    QObject::connect(reply, &QNetworkReply::requestSent, reply,
                     [] { OSTURLSession::requestReached(OSTURLSession::RequestStage::Sent); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [self] { self->finish(); });
}

void OSTURLSessionTask::checkDeclaredLength()
{
    const QVariant declared = m_reply ? m_reply->header(QNetworkRequest::ContentLengthHeader) : QVariant();
    if (declared.isValid() && declared.toLongLong() > maximumBodyLength)
        abortWith(Failure::BodyTooLarge);
}

void OSTURLSessionTask::checkReceivedLength(qint64 received)
{
    if (received > maximumBodyLength)
        abortWith(Failure::BodyTooLarge);
}

void OSTURLSessionTask::abortWith(Failure failure)
{
    if (!m_reply || m_reply->isFinished() || m_failure != Failure::None)
        return;
    m_failure = failure;
    m_reply->abort();
}

void OSTURLSessionTask::finish()
{
    if (m_clock)
        m_clock->cancel(m_timeoutTimer);
    const OSTURLTaskResult result = resultOfReply();
    m_reply->deleteLater();
    complete(result);
}

OSTURLTaskResult OSTURLSessionTask::resultOfReply() const
{
    OSTURLTaskResult result;
    result.url = url();
    const QVariant status = m_reply->attribute(QNetworkRequest::HttpStatusCodeAttribute);
    if (status.isValid())
        result.statusCode = status.toInt();

    switch (m_failure) {
    case Failure::Cancelled:
        result.error = OSTURLErrorTable::errorWithCode(OSTURLErrorCancelled, u"The request was cancelled."_s);
        return result;
    case Failure::TimedOut:
        result.error = OSTURLErrorTable::errorWithCode(OSTURLErrorTimedOut, u"The request timed out."_s);
        return result;
    case Failure::BodyTooLarge:
        result.error = OSTURLErrorTable::errorWithCode(
            OSTURLErrorDataLengthExceedsMaximum,
            u"The response body is longer than %1 bytes."_s.arg(maximumBodyLength));
        return result;
    case Failure::None:
        break;
    }

    const std::optional<int> code =
        OSTURLErrorTable::codeForNetworkError(m_reply->error(), result.statusCode.has_value());
    if (code) {
        const int reported = *code == OSTURLErrorSecureConnectionFailed && m_certificateRefused
            ? OSTURLErrorServerCertificateUntrusted
            : *code;
        result.error = OSTURLErrorTable::errorWithCode(reported, m_reply->errorString());
        return result;
    }
    result.data = m_reply->readAll();
    return result;
}

void OSTURLSessionTask::complete(const OSTURLTaskResult &result)
{
    m_state = State::Completed;
    Completion completion = std::move(m_completion);
    m_completion = nullptr;
    if (completion)
        completion(result);
}

} // namespace ostrel
