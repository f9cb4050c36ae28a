#include "EnvelopeCrypto.h"

#include <QJsonDocument>
#include <QJsonParseError>

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rsa.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

constexpr int aesKeyLength = 32;
constexpr int aesBlockLength = 16;

enum class Padding { PKCS7, None };
enum class Direction { Encrypt, Decrypt };

std::optional<QByteArray> runCipher(const QByteArray &input, const PayloadKey &payloadKey, Direction direction,
                                    Padding padding)
{
    if (payloadKey.key.size() != aesKeyLength || payloadKey.initializationVector.size() != aesBlockLength)
        return std::nullopt;
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                            EVP_CIPHER_CTX_free);
    if (EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                          reinterpret_cast<const unsigned char *>(payloadKey.key.constData()),
                          reinterpret_cast<const unsigned char *>(payloadKey.initializationVector.constData()),
                          direction == Direction::Encrypt ? 1 : 0) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    EVP_CIPHER_CTX_set_padding(context.get(), padding == Padding::PKCS7 ? 1 : 0);
    QByteArray output(input.size() + aesBlockLength, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(output.data());
    int moved = 0;
    int finalMoved = 0;
    if (EVP_CipherUpdate(context.get(), out, &moved, reinterpret_cast<const unsigned char *>(input.constData()),
                         static_cast<int>(input.size())) != 1
        || EVP_CipherFinal_ex(context.get(), out + moved, &finalMoved) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    output.truncate(moved + finalMoved);
    return output;
}

std::optional<QByteArray> base64Member(const QJsonObject &envelope, const QString &name)
{
    const QJsonValue value = envelope.value(name);
    if (!value.isString())
        return std::nullopt;
    const auto decoded = QByteArray::fromBase64Encoding(value.toString().toLatin1(),
                                                        QByteArray::AbortOnBase64DecodingErrors);
    return decoded ? std::optional<QByteArray>(*decoded) : std::nullopt;
}

} // namespace

EnvelopeCrypto::EnvelopeCrypto(EVP_PKEY *privateKey) : m_privateKey(privateKey) {}

std::optional<OpenedEnvelope> EnvelopeCrypto::open(const QByteArray &body, QString &error) const
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(body, &parseError);
    if (!document.isObject()) {
        error = u"the body is not a JSON object"_s;
        return std::nullopt;
    }
    const QJsonObject envelope = document.object();
    const std::optional<QByteArray> vector = base64Member(envelope, u"iv"_s);
    const std::optional<QByteArray> wrappedKey = base64Member(envelope, u"encrypted_key"_s);
    const std::optional<QByteArray> data = base64Member(envelope, u"encrypted_data"_s);
    if (!vector || !wrappedKey || !data) {
        error = u"\"iv\", \"encrypted_key\" and \"encrypted_data\" must be base64 strings"_s;
        return std::nullopt;
    }
    if (vector->size() != aesBlockLength) {
        error = u"\"iv\" must hold 16 bytes"_s;
        return std::nullopt;
    }
    const std::optional<QByteArray> key = unwrapKey(*wrappedKey);
    if (!key) {
        error = u"\"encrypted_key\" does not decrypt to a 32-byte key with this service's private key"_s;
        return std::nullopt;
    }
    const PayloadKey payloadKey{*key, *vector};
    const std::optional<QByteArray> plaintext = decrypt(*data, payloadKey);
    if (!plaintext) {
        error = u"\"encrypted_data\" does not decrypt with the payload key"_s;
        return std::nullopt;
    }
    const QJsonDocument parameters = QJsonDocument::fromJson(*plaintext, &parseError);
    if (!parameters.isObject()) {
        error = u"the decrypted parameters are not a JSON object"_s;
        return std::nullopt;
    }
    return OpenedEnvelope{payloadKey, parameters.object()};
}

QByteArray EnvelopeCrypto::seal(const QByteArray &plaintext, const PayloadKey &payloadKey)
{
    return runCipher(plaintext, payloadKey, Direction::Encrypt, Padding::PKCS7).value_or(QByteArray());
}

QByteArray EnvelopeCrypto::sealWithoutPadding(const QByteArray &block, const PayloadKey &payloadKey)
{
    return runCipher(block, payloadKey, Direction::Encrypt, Padding::None).value_or(QByteArray());
}

std::optional<QByteArray> EnvelopeCrypto::decrypt(const QByteArray &ciphertext, const PayloadKey &payloadKey)
{
    return runCipher(ciphertext, payloadKey, Direction::Decrypt, Padding::PKCS7);
}

std::optional<QByteArray> EnvelopeCrypto::unwrapKey(const QByteArray &wrapped) const
{
    std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new(m_privateKey, nullptr),
                                                                        EVP_PKEY_CTX_free);
    const auto *input = reinterpret_cast<const unsigned char *>(wrapped.constData());
    size_t length = 0;
    if (!context || EVP_PKEY_decrypt_init(context.get()) <= 0
        || EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) <= 0
        || EVP_PKEY_decrypt(context.get(), nullptr, &length, input, static_cast<size_t>(wrapped.size())) <= 0) {
        ERR_clear_error();
        return std::nullopt;
    }
    QByteArray key(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (EVP_PKEY_decrypt(context.get(), reinterpret_cast<unsigned char *>(key.data()), &length, input,
                         static_cast<size_t>(wrapped.size())) <= 0) {
        ERR_clear_error();
        return std::nullopt;
    }
    key.truncate(static_cast<qsizetype>(length));
    if (key.size() != aesKeyLength)
        return std::nullopt;
    return key;
}

} // namespace ostrel::devserver
