#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QString>

#include <openssl/types.h>

#include <optional>

namespace ostrel::devserver {

// The key and IV a client chose for one request; the answer is encrypted with them.
struct PayloadKey {
    QByteArray key;
    QByteArray initializationVector;
};

// What an envelope {"iv", "encrypted_key", "encrypted_data"} held.
struct OpenedEnvelope {
    PayloadKey payloadKey;
    QJsonObject parameters;
};

// The service's side of the payload encryption: unwraps the AES key with the private RSA key
// (PKCS#1 v1.5), decrypts the parameters (AES-256-CBC, PKCS#7) and encrypts answers the same way.
class EnvelopeCrypto {
public:
    // `privateKey` must outlive this object.
    explicit EnvelopeCrypto(EVP_PKEY *privateKey);

    // The envelope's content, or nothing with `error` saying what was wrong with it.
    std::optional<OpenedEnvelope> open(const QByteArray &body, QString &error) const;
    // The answer body for `plaintext`.
    static QByteArray seal(const QByteArray &plaintext, const PayloadKey &payloadKey);
    // One block encrypted without padding: a body that decrypts but whose padding is wrong.
    static QByteArray sealWithoutPadding(const QByteArray &block, const PayloadKey &payloadKey);
    static std::optional<QByteArray> decrypt(const QByteArray &ciphertext, const PayloadKey &payloadKey);

private:
    std::optional<QByteArray> unwrapKey(const QByteArray &wrapped) const;

    EVP_PKEY *m_privateKey;
};

} // namespace ostrel::devserver
