#include "network/OSTURLSession.h"

#include "platform/OSTMainQueue.h"

#include <QNetworkAccessManager>
#include <QSslConfiguration>

#include <mutex>

namespace ostrel {

std::shared_ptr<OSTURLSession> OSTURLSession::create(const QString &queueName, double timeoutInterval)
{
    return std::shared_ptr<OSTURLSession>(new OSTURLSession(queueName, timeoutInterval));
}

OSTURLSession::OSTURLSession(const QString &queueName, double timeoutInterval)
    : m_timeoutInterval(timeoutInterval), m_queue(std::make_unique<OSTSerialQueue>(queueName))
{
    // The manager must be made on the thread it serves.
    m_queue->sync([this] {
        m_manager = new QNetworkAccessManager(m_queue->context());
        m_manager->setAutoDeleteReplies(false);
        // Qt makes its TLS globals (the backend plugin, the default configuration) on first use:
        // made here, they come before the registration below rather than during a request that
        // an exit() may meet.
        QSslConfiguration::defaultConfiguration();
    });
    // The first manager brought the network's globals in; the queues must stop before they go.
    // They are the process's, so once is enough (sessions are made per request, too).
    static std::once_flag firstManager;
    std::call_once(firstManager, &OSTMainQueue::shutDownBeforeExitHandlers);
}

void OSTURLSession::requestReached(RequestStage stage)
{
    static std::once_flag firstStart;
    static std::once_flag firstSend;
    std::call_once(stage == RequestStage::Started ? firstStart : firstSend, &OSTMainQueue::shutDownBeforeExitHandlers);
}

OSTURLSession::~OSTURLSession() = default;

std::shared_ptr<OSTURLSessionTask> OSTURLSession::dataTask(const QNetworkRequest &request,
                                                           const QByteArray &body,
                                                           OSTURLSessionTask::Completion completion)
{
    return std::make_shared<OSTURLSessionTask>(weak_from_this(), OSTURLSessionTask::Method::Post,
                                               request, body, std::move(completion));
}

std::shared_ptr<OSTURLSessionTask> OSTURLSession::downloadTask(const QNetworkRequest &request,
                                                               OSTURLSessionTask::Completion completion)
{
    return std::make_shared<OSTURLSessionTask>(weak_from_this(), OSTURLSessionTask::Method::Get,
                                               request, QByteArray(), std::move(completion));
}

} // namespace ostrel
