#pragma once

#include "network/OSTURLSessionTask.h"
#include "platform/OSTSerialQueue.h"

#include <QNetworkAccessManager>
#include <QPointer>

#include <memory>

namespace ostrel {

// A QNetworkAccessManager living on its own serial queue, with one time-out for all its
// requests. Every task's completion runs on that queue, one at a time, never on the GUI thread.
// Destroying the session (never from its own queue) lets submitted work finish, then stops the
// queue; tasks still running are dropped with it.
class OSTURLSession : public std::enable_shared_from_this<OSTURLSession> {
public:
    static std::shared_ptr<OSTURLSession> create(const QString &queueName, double timeoutInterval);
    ~OSTURLSession();

    OSTURLSession(const OSTURLSession &) = delete;
    OSTURLSession &operator=(const OSTURLSession &) = delete;

    // Seconds after which a request is abandoned with NSURLErrorTimedOut.
    double timeoutInterval() const { return m_timeoutInterval; }
    const OSTSerialQueue &delegateQueue() const { return *m_queue; }

    // A POST of `body`, suspended until resumed.
    std::shared_ptr<OSTURLSessionTask> dataTask(const QNetworkRequest &request, const QByteArray &body,
                                                OSTURLSessionTask::Completion completion);
    // A GET, suspended until resumed.
    std::shared_ptr<OSTURLSessionTask> downloadTask(const QNetworkRequest &request,
                                                    OSTURLSessionTask::Completion completion);

    // The manager; only to be used on the delegate queue.
    QNetworkAccessManager *networkAccessManager() const { return m_manager; }
    // How far a request has gone; each stage's first time may bring in more of Qt's network
    // globals, so the queues' shutdown at exit() is registered again after it.
    enum class RequestStage {
        Started, // handed to the manager (name lookup, connections, TLS)
        Sent,    // written by the manager's own thread (the request's headers)
    };
    static void requestReached(RequestStage stage);

private:
    OSTURLSession(const QString &queueName, double timeoutInterval);

    const double m_timeoutInterval;
    std::unique_ptr<OSTSerialQueue> m_queue;
    // Owned by the queue's context object, destroyed on the queue's thread with it.
    QPointer<QNetworkAccessManager> m_manager;
};

} // namespace ostrel
