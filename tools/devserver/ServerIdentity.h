#pragma once

#include <QByteArray>
#include <QSslCertificate>
#include <QSslKey>
#include <QString>

#include <openssl/types.h>

#include <memory>
#include <optional>

namespace ostrel::devserver {

// The service's RSA-2048 key and self-signed certificate (CN "ostrel-devserver", valid for
// localhost and the loopback addresses). Made on first start and kept in two PEM files, so the
// certificate the SDK was configured with stays valid across restarts.
class ServerIdentity {
public:
    // Loads the key and certificate from `keyPath` and `certificatePath`, making whichever is
    // missing. Nothing (with `error` set) when they cannot be read or written.
    static std::optional<ServerIdentity> loadOrCreate(const QString &keyPath, const QString &certificatePath,
                                                      QString &error);

    // Base64 of the certificate's DER bytes: the SDK's "OstrelServiceCertificate".
    QString certificateBase64() const;
    QSslCertificate sslCertificate() const;
    QSslKey sslKey() const;
    // The private key (owned by this object), for unwrapping payload keys.
    EVP_PKEY *privateKey() const { return m_key.get(); }

private:
    ServerIdentity(std::shared_ptr<EVP_PKEY> key, QByteArray certificateDer);

    std::shared_ptr<EVP_PKEY> m_key;
    QByteArray m_certificateDer;
};

} // namespace ostrel::devserver
