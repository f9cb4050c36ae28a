#pragma once

#include <ostrel/OSTError.h>

#include "network/OSTRequestManager.h"

#include <QImage>
#include <QMutex>
#include <QPointer>
#include <QString>
#include <QThread>
#include <QVariantMap>

#include <atomic>
#include <functional>
#include <optional>
#include <vector>

namespace ostrel::test {

enum class CertificateValidity { Current, Expired };

// An RSA-2048 key (PEM file) and its self-signed certificate, made with OpenSSL's API.
struct TestCertificate {
    QString keyPath;
    QByteArray der;
    QString base64() const { return QString::fromLatin1(der.toBase64()); }
};

TestCertificate makeTestCertificate(const QString &folder, CertificateValidity validity);

// What one request's completion delivered, and where.
struct RequestOutcome {
    std::optional<QVariantMap> response;
    std::optional<QString> text;
    std::optional<OSTError> error;
    QString threadName;
    QPointer<QThread> thread;
    std::atomic<bool> done{false};

    OSTRequestManager::Completion completion();
    OSTRequestManager::StringCompletion stringCompletion();
    // Runs the main loop until the completion ran (real-time safety net).
    bool wait();
    int errorCode() const { return error ? error->code : 0; }

private:
    // What every completion records besides its answer; `done` last, as the waiter's signal.
    void record(const std::optional<OSTError> &receivedError);
};

// A PNG of `side` by `side` pixels of one colour.
QByteArray pngOfColor(Qt::GlobalColor color, int side = 4);

// What one image request through the shared request manager delivered.
struct ImageDownload {
    QImage image;
    std::optional<OSTError> error;
};

// Requests `url`, runs `whileWaiting` (time may need to move), then waits for the answer.
ImageDownload downloadImage(const QUrl &url, const std::function<void()> &whileWaiting = {});

// A loopback port that nothing listens on.
quint16 closedLoopbackPort();

} // namespace ostrel::test
