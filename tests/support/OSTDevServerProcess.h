#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QUrl>
#include <QVariantList>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel::test {

// One request as the development service recorded it after decrypting it.
struct OSTRecordedRequest {
    QString endpoint;
    // Seconds since 1970 (the service's real clock).
    double receivedAt = 0.0;
    QVariantMap parameters;
};

// An answer of the service to a raw HTTP request.
struct OSTHTTPAnswer {
    // 0 when no HTTP answer arrived.
    int status = 0;
    QByteArray body;
};

// Runs ostrel-devserver for one test: on a free loopback port, with its own temporary database
// and experience folder, stopped when the object goes away. The experience folder may be filled
// before or after start (the service reads it at every launch request).
//
//   test::OSTDevServerProcess server;
//   server.writeExperience(experience);
//   ASSERT_TRUE(server.start());
//   server.installMainBundle(bundleFolder);            // the SDK now talks to this service
//   ... drive the SDK ...
//   EXPECT_EQ(server.recordedRequests(u"launch_v3"_s).size(), 1);
//
// Waiting for the process to start and for admin answers uses real time with generous limits;
// that is a safety net, never SDK time. Main thread only.
class OSTDevServerProcess {
public:
    struct Options {
        // --fault values, e.g. "launch_v3:status=500,times=1" or "*:delay=30". A delay is on the
        // service's driven clock: the answer waits until advanceClock() moves it far enough.
        QStringList faults = {};
        // Serve https with the service certificate.
        bool tls = false;
        QStringList extraArguments = {};
    };

    OSTDevServerProcess();
    ~OSTDevServerProcess();
    OSTDevServerProcess(const OSTDevServerProcess &) = delete;
    OSTDevServerProcess &operator=(const OSTDevServerProcess &) = delete;

    // Whether the test executable knows where ostrel-devserver is.
    static bool isAvailable();

    // Starts the service and waits until it is ready. Restarting after stop() keeps the
    // database, key and certificate.
    bool start(const Options &options);
    bool start() { return start(Options()); }
    void stop();
    bool isRunning() const;

    quint16 port() const { return m_port; }
    // The base64 DER certificate, for "OstrelServiceCertificate".
    QString certificateBase64() const { return m_certificate; }
    // The base URL, for "OstrelServiceURL".
    QUrl serviceURL() const { return m_serviceURL; }
    QString experienceFolder() const;
    QString databasePath() const;
    // Everything the service printed so far ("pin: ..." lines among them).
    QString standardOutput();
    QString standardError();

    // Writes Info.json into `folder` naming this service and its certificate (plus `extraInfo`)
    // and makes the folder the main bundle. Returns the folder.
    QString installMainBundle(const QString &folder, const QVariantMap &extraInfo = {}) const;

    void writeExperience(const QVariantMap &experience) const;
    void writeLaunchConfiguration(const QVariantMap &configuration) const;
    void writeImage(const QString &name, const QByteArray &bytes) const;

    // The decrypted requests, oldest first; all endpoints when `endpoint` is empty.
    QList<OSTRecordedRequest> recordedRequests(const QString &endpoint = {}) const;
    // The stored events (each once per "ost_event_id"), oldest first.
    QList<QVariantMap> storedEvents() const;
    int storedEventCount() const;
    // The last PIN derived for `phoneNumber`.
    std::optional<QString> verificationPin(const QString &phoneNumber) const;
    // What the service holds for "user:<id>" or "device:<id>".
    QVariantMap storedUserProperties(const QString &userKey) const;

    // Sets one fault through the admin route: {"endpoint": "launch_v3", "status": 500,
    // "delay": 30, "body": "garbage"|"bad-padding"|"not-json"|"array"|"empty"|"oversized",
    // "connection": "drop"|"truncate", "times": 1}.
    bool setFault(const QVariantMap &fault);
    bool clearFaults();
    QVariantList faults();
    // Moves the service's clock on; delayed answers that have come due are sent.
    bool advanceClock(double seconds);

    // A raw HTTP request to the service (GET, POST or DELETE).
    OSTHTTPAnswer send(const QByteArray &method, const QString &path, const QByteArray &body = {});

private:
    bool waitUntilReady();
    void readOutput();
    QList<QVariantList> query(const QString &sql, const QVariantList &bindings = {}) const;

    QTemporaryDir m_folder;
    std::unique_ptr<QProcess> m_process;
    QString m_output;
    QString m_error;
    quint16 m_port = 0;
    QString m_certificate;
    QUrl m_serviceURL;
};

} // namespace ostrel::test
