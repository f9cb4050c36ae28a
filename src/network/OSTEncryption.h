#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <openssl/types.h>

#include <functional>
#include <optional>

namespace ostrel {

// The hybrid encryption of every service payload. One random AES-256 key and one random IV are
// made per process; the key is encrypted once (RSA, PKCS#1 v1.5) with the public key of the
// service certificate, so the service can recover it with its private key. Bodies travel as
// AES-256-CBC with PKCS#7 padding under that key and IV, in both directions.
//
// Each value is made once, on first use, under a one-time guard; a value whose making failed
// stays absent for the life of the process. Thread-safe.
class OSTEncryption {
public:
    enum class Operation { Encrypt = 0, Decrypt = 1 };

    OSTEncryption() = delete;

    // `length` bytes from the system's secure random generator, or nothing when it fails.
    static std::optional<QByteArray> randomDataOfLength(int length);

    // 32 bytes.
    static std::optional<QByteArray> aesKey();
    // 16 bytes.
    static std::optional<QByteArray> initializationVector();
    // The RSA public key of the service certificate (OSTServiceConfiguration), owned by this
    // class; null when the certificate is missing, unreadable or holds no RSA key. The
    // certificate is not verified: an expired or self-signed one still yields its key.
    static EVP_PKEY *publicKey();
    // aesKey() encrypted with publicKey(); as long as the RSA modulus (256 bytes for 2048 bits).
    static std::optional<QByteArray> encryptedAESKey();

    static std::optional<QByteArray> encryptData(const QByteArray &data);
    // The same ciphertext as encryptData, handed to `piece` in consecutive pieces of `pieceSize`
    // bytes (the last one up to a block longer or shorter), so that a caller can encode it on
    // the fly instead of holding all of it. `pieceSize` is a positive multiple of the 16-byte
    // block. False when the cipher failed; pieces already handed over are then incomplete.
    static bool encryptDataInPieces(QByteArrayView data, qsizetype pieceSize,
                                    const std::function<void(QByteArrayView)> &piece);
    // Nothing when the data is not a whole number of blocks or its padding is wrong.
    static std::optional<QByteArray> decryptData(const QByteArray &data);
    static std::optional<QByteArray> runCryptorOnData(const QByteArray &data, Operation operation);

    // Lower-case hexadecimal MD5 of the UTF-8 bytes (32 characters); "" for empty input.
    static QString md5HashOfString(const QString &text);
};

} // namespace ostrel
