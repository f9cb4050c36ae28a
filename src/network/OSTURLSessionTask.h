#pragma once

#include <ostrel/OSTError.h>

#include "platform/OSTClock.h"

#include <QByteArray>
#include <QNetworkRequest>
#include <QPointer>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>
#include <optional>

class QNetworkReply;

namespace ostrel {

class OSTURLSession;

// What the transport delivered for one request.
struct OSTURLTaskResult {
    QUrl url;
    // The HTTP status, absent when no HTTP response arrived.
    std::optional<int> statusCode;
    // The whole body; absent when it did not arrive whole.
    std::optional<QByteArray> data;
    // A failure of the transport (not an HTTP status), in NSURLErrorDomain.
    std::optional<OSTError> error;
};

// One request of an OSTURLSession: made suspended, started by resume(), finished exactly once
// by its completion on the session's queue. The handle is shared: callers may keep it (to cancel)
// or drop it; the session keeps a running task alive until it completes.
//
// The time-out runs on OSTClock::current(), so a manual clock in tests makes a request time out
// by advancing. Bodies longer than maximumBodyLength are refused as soon as that is known (the
// declared length, else the bytes received), without waiting for the rest.
class OSTURLSessionTask : public std::enable_shared_from_this<OSTURLSessionTask> {
public:
    enum class Method { Get, Post };
    enum class State { Suspended, Running, Completed };
    using Completion = std::function<void(const OSTURLTaskResult &result)>;

    static constexpr qint64 maximumBodyLength = 16 * 1024 * 1024;

    OSTURLSessionTask(std::weak_ptr<OSTURLSession> session, Method method,
                      const QNetworkRequest &request, const QByteArray &body, Completion completion);
    OSTURLSessionTask(const OSTURLSessionTask &) = delete;
    OSTURLSessionTask &operator=(const OSTURLSessionTask &) = delete;

    // Starts the request on the session's queue; later calls do nothing.
    void resume();
    // Stops the request; its completion then reports NSURLErrorCancelled (-999) unless it has
    // already finished. May be called from any thread.
    void cancel();

    State state() const { return m_state.load(); }
    QUrl url() const { return m_request.url(); }
    quint64 taskIdentifier() const { return m_identifier; }

private:
    enum class Failure { None, Cancelled, TimedOut, BodyTooLarge };

    void start();
    void watchReply(QNetworkReply *reply);
    void checkDeclaredLength();
    void checkReceivedLength(qint64 received);
    void abortWith(Failure failure);
    void finish();
    OSTURLTaskResult resultOfReply() const;
    void complete(const OSTURLTaskResult &result);

    const std::weak_ptr<OSTURLSession> m_session;
    const Method m_method;
    const QNetworkRequest m_request;
    const QByteArray m_body;
    const quint64 m_identifier;
    Completion m_completion;
    std::atomic<State> m_state{State::Suspended};
    std::atomic<bool> m_cancelRequested{false};

    // Touched on the session's queue only.
    QPointer<QNetworkReply> m_reply;
    Failure m_failure = Failure::None;
    bool m_certificateRefused = false;
    std::shared_ptr<OSTClock> m_clock;
    OSTTimerId m_timeoutTimer = 0;
};

} // namespace ostrel
