#pragma once

#include <ostrel/OSTError.h>

#include "network/OSTURLSession.h"

#include <QImage>
#include <QMutex>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <map>
#include <memory>
#include <optional>

namespace ostrel {

// Every call to the service goes through here: a JSON POST to the service URL plus "/" plus the
// endpoint, whose body is the encrypted envelope of the parameters (OSTRequestEnvelope). A 200
// answer is decrypted with the same key and IV and handed on; any other status becomes an error
// of NSURLErrorDomain whose code is the status (401: the token was refused).
//
// Sessions: the data session (5 s time-out) serves ordinary requests, the download session
// (30 s) images, and a request with another time-out gets a session of its own that is released
// once the request has completed. Completions run on the queue of the session that carried the
// request, never on the GUI thread; callers that touch widgets hop to the main queue.
//
// Bad answers (not ciphertext, bad padding, not JSON, a top-level array, an empty body, a body
// over 16 MiB, a connection closed mid-body) reach the completion as (nullopt, error) with a
// debug log line. Thread-safe.
class OSTRequestManager {
public:
    using Completion = std::function<void(const std::optional<QVariantMap> &response,
                                          const std::optional<OSTError> &error)>;
    using StringCompletion = std::function<void(const std::optional<QString> &response,
                                                const std::optional<OSTError> &error)>;
    using ImageCompletion = std::function<void(const QImage &image, const std::optional<OSTError> &error)>;
    // The decrypted body (absent on failure) and the error.
    using BodyCompletion = std::function<void(const std::optional<QByteArray> &body,
                                              const std::optional<OSTError> &error)>;
    using Task = std::shared_ptr<OSTURLSessionTask>;

    static constexpr double dataSessionTimeout = 5.0;
    static constexpr double downloadSessionTimeout = 30.0;

    static OSTRequestManager &sharedManager();

    OSTRequestManager(const OSTRequestManager &) = delete;
    OSTRequestManager &operator=(const OSTRequestManager &) = delete;

    // The three forms below return the started task.
    Task apiRequestWithEndpoint(const QString &endpoint, const QVariantMap &parameters,
                                const Completion &completion);
    // A timeout of exactly 5.0 uses the data session; any other gets a session of its own.
    Task apiRequestWithEndpoint(const QString &endpoint, const QVariantMap &parameters, double timeout,
                                const Completion &completion);
    // The decrypted answer as UTF-8 text (the "event" and "verify_phone_number" endpoints).
    Task apiStringRequestWithEndpoint(const QString &endpoint, const QVariantMap &parameters,
                                      const StringCompletion &completion);
    // The same for parameters that are already a JSON object's text (the event queue keeps its
    // events as text, so a batch is never serialised twice).
    Task apiStringRequestWithSerializedParameters(const QString &endpoint, const QByteArray &json,
                                                  const StringCompletion &completion);
    // Builds the request on `session` without starting it; logs the parameters in clear at debug
    // level.
    Task apiRequestWithEndpoint(const QString &endpoint, const QVariantMap &parameters,
                                const std::shared_ptr<OSTURLSession> &session,
                                const BodyCompletion &completion);

    // A GET on the download session; the image has a device pixel ratio of 2. Reports the
    // download's duration as a statistical event.
    Task imageRequestWithURL(const QUrl &url, const ImageCompletion &completion);

    const OSTURLSession &dataSession() const { return *m_dataSession; }
    const OSTURLSession &downloadSession() const { return *m_downloadSession; }
    // Sessions made for one request and not yet released.
    int customSessionCount() const;


private:
    OSTRequestManager();

    static QNetworkRequest requestWithURL(const QUrl &url);
    Task apiRequestWithBody(const QString &endpoint, const QByteArray &body,
                            const std::shared_ptr<OSTURLSession> &session, const BodyCompletion &completion);
    void completeAPIRequest(const QString &endpoint, const OSTURLTaskResult &result,
                            const BodyCompletion &completion) const;
    void completeImageRequest(const OSTURLTaskResult &result, double startTime,
                              const ImageCompletion &completion) const;
    std::shared_ptr<OSTURLSession> takeCustomSession(quint64 taskIdentifier);

    const std::shared_ptr<OSTURLSession> m_dataSession;
    const std::shared_ptr<OSTURLSession> m_downloadSession;
    // Custom sessions are destroyed here, never on their own queue (which cannot stop itself).
    const OSTSerialQueue m_sessionReleaseQueue;

    mutable QMutex m_mutex;
    std::map<quint64, std::shared_ptr<OSTURLSession>> m_customSessions;
    quint64 m_customSessionSerial = 0;
};

} // namespace ostrel
