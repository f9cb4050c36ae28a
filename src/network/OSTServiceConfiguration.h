#pragma once

#include <QByteArray>
#include <QSslConfiguration>
#include <QString>
#include <QUrl>

namespace ostrel {

// Where the service is and which certificate's key protects the payload key. Read once, on
// first use, from the main bundle's Info.json ("OstrelServiceURL", "OstrelServiceCertificate"),
// falling back to the values compiled in with OSTREL_DEFAULT_SERVICE_URL and
// OSTREL_DEFAULT_SERVICE_CERTIFICATE. Immutable afterwards, so it may be read from any thread.
class OSTServiceConfiguration {
public:
    static const OSTServiceConfiguration &sharedConfiguration();

    // Builds a configuration from explicit values; empty strings fall back to the compiled-in
    // defaults.
    OSTServiceConfiguration(const QString &serviceURL, const QString &certificateBase64);

    // The base URL, or an invalid URL when none is configured.
    QUrl serviceURL() const { return m_serviceURL; }
    // Base URL with `endpoint` appended as one more path component.
    QUrl urlForEndpoint(const QString &endpoint) const;

    // The base64 text of the DER certificate, kept as three pieces joined at run time.
    QString firstPart() const { return m_firstPart; }
    QString secondPart() const { return m_secondPart; }
    QString thirdPart() const { return m_thirdPart; }
    // The pieces joined and base64-decoded; empty when there is no certificate or the text is
    // not base64.
    QByteArray certificateData() const;

    // TLS settings for an https request to `url`, peer verification on. Connections to the
    // service's own host trust the system's authorities and, in addition, the service
    // certificate (so the service may present it directly); every other host (image servers)
    // is checked against the system's authorities only, so the service key cannot vouch for
    // anybody else.
    QSslConfiguration sslConfigurationForURL(const QUrl &url) const;
    bool isServiceHost(const QUrl &url) const;

private:
    void splitCertificate(const QString &base64);
    QSslConfiguration makeSslConfiguration() const;

    QUrl m_serviceURL;
    QString m_firstPart;
    QString m_secondPart;
    QString m_thirdPart;
    QSslConfiguration m_sslConfiguration;
};

} // namespace ostrel
