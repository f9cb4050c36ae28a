#include "network/OSTEncryption.h"

#include "core/OSTLogging.h"
#include "network/OSTServiceConfiguration.h"
#include "platform/OSTSerialQueue.h"

#include <QCryptographicHash>

#include <openssl/crypto.h>
#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/rand.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>

#include <climits>
#include <memory>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int aesKeyLength = 32;
constexpr int aesBlockLength = 16;

struct PublicKeyDeleter {
    void operator()(EVP_PKEY *key) const { EVP_PKEY_free(key); }
};
using PublicKeyPointer = std::unique_ptr<EVP_PKEY, PublicKeyDeleter>;
using CipherContext = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

// OpenSSL frees a thread's random generator and error state only after the thread is gone, which
// for a queue stopped at the end of the application may be after the process began to exit.
const bool threadStateReleasedWithEachQueue = [] {
    OSTSerialQueue::addThreadEndHandler([] { OPENSSL_thread_stop(); });
    return true;
}();

QString openSSLErrorText()
{
    const unsigned long code = ERR_get_error();
    ERR_clear_error();
    if (code == 0)
        return u"unknown error"_s;
    char buffer[256];
    ERR_error_string_n(code, buffer, sizeof buffer);
    return QString::fromLatin1(buffer);
}

PublicKeyPointer publicKeyOfCertificate(const QByteArray &der)
{
    if (der.isEmpty()) {
        OSTLogging::logError(u"No service certificate is configured; requests cannot be encrypted."_s);
        return nullptr;
    }
    const auto *bytes = reinterpret_cast<const unsigned char *>(der.constData());
    X509 *certificate = d2i_X509(nullptr, &bytes, der.size());
    if (!certificate) {
        OSTLogging::logError(u"The service certificate could not be read: %1"_s, openSSLErrorText());
        return nullptr;
    }
    PublicKeyPointer key(X509_get_pubkey(certificate));
    X509_free(certificate);
    if (!key || EVP_PKEY_get_base_id(key.get()) != EVP_PKEY_RSA) {
        OSTLogging::logError(u"The service certificate holds no RSA public key."_s);
        return nullptr;
    }
    return key;
}

std::optional<QByteArray> encryptWithPublicKey(EVP_PKEY *key, const QByteArray &plain)
{
    std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new(key, nullptr),
                                                                        EVP_PKEY_CTX_free);
    size_t length = 0;
    const auto *input = reinterpret_cast<const unsigned char *>(plain.constData());
    if (!context || EVP_PKEY_encrypt_init(context.get()) <= 0
        || EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING) <= 0
        || EVP_PKEY_encrypt(context.get(), nullptr, &length, input, static_cast<size_t>(plain.size())) <= 0) {
        OSTLogging::logError(u"The payload key could not be encrypted: %1"_s, openSSLErrorText());
        return std::nullopt;
    }
    QByteArray output(static_cast<qsizetype>(length), Qt::Uninitialized);
    if (EVP_PKEY_encrypt(context.get(), reinterpret_cast<unsigned char *>(output.data()), &length,
                         input, static_cast<size_t>(plain.size())) <= 0) {
        OSTLogging::logError(u"The payload key could not be encrypted: %1"_s, openSSLErrorText());
        return std::nullopt;
    }
    output.truncate(static_cast<qsizetype>(length));
    return output;
}

// AES-256-CBC under the process's key and vector, ready to run; null when either is missing.
CipherContext processCipherContext(OSTEncryption::Operation operation)
{
    const std::optional<QByteArray> key = OSTEncryption::aesKey();
    const std::optional<QByteArray> vector = OSTEncryption::initializationVector();
    CipherContext context(key && vector ? EVP_CIPHER_CTX_new() : nullptr, EVP_CIPHER_CTX_free);
    const int encrypting = operation == OSTEncryption::Operation::Encrypt ? 1 : 0;
    if (context
        && EVP_CipherInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                             reinterpret_cast<const unsigned char *>(key->constData()),
                             reinterpret_cast<const unsigned char *>(vector->constData()), encrypting) != 1) {
        ERR_clear_error();
        context.reset();
    }
    return context;
}

} // namespace

std::optional<QByteArray> OSTEncryption::randomDataOfLength(int length)
{
    if (length < 0)
        return std::nullopt;
    QByteArray bytes(length, Qt::Uninitialized);
    if (RAND_bytes(reinterpret_cast<unsigned char *>(bytes.data()), length) != 1) {
        OSTLogging::logError(u"The secure random generator failed: %1"_s, openSSLErrorText());
        return std::nullopt;
    }
    return bytes;
}

std::optional<QByteArray> OSTEncryption::aesKey()
{
    // This and the other keys below are never destroyed: request threads use them until exit.
    static const auto *key = new std::optional<QByteArray>(randomDataOfLength(aesKeyLength));
    return *key;
}

std::optional<QByteArray> OSTEncryption::initializationVector()
{
    static const auto *vector = new std::optional<QByteArray>(randomDataOfLength(aesBlockLength));
    return *vector;
}

EVP_PKEY *OSTEncryption::publicKey()
{
    static const auto *key =
        new PublicKeyPointer(publicKeyOfCertificate(OSTServiceConfiguration::sharedConfiguration().certificateData()));
    return key->get();
}

std::optional<QByteArray> OSTEncryption::encryptedAESKey()
{
    static const auto *encrypted = new std::optional<QByteArray>([]() -> std::optional<QByteArray> {
        const std::optional<QByteArray> key = aesKey();
        EVP_PKEY *rsa = publicKey();
        if (!key || !rsa)
            return std::nullopt;
        return encryptWithPublicKey(rsa, *key);
    }());
    return *encrypted;
}

std::optional<QByteArray> OSTEncryption::encryptData(const QByteArray &data)
{
    return runCryptorOnData(data, Operation::Encrypt);
}

std::optional<QByteArray> OSTEncryption::decryptData(const QByteArray &data)
{
    return runCryptorOnData(data, Operation::Decrypt);
}

bool OSTEncryption::encryptDataInPieces(QByteArrayView data, qsizetype pieceSize,
                                       const std::function<void(QByteArrayView)> &piece)
{
    if (pieceSize <= 0 || pieceSize % aesBlockLength != 0 || pieceSize > INT_MAX - aesBlockLength)
        return false;
    const CipherContext context = processCipherContext(Operation::Encrypt);
    if (!context)
        return false;
    // Every piece but the last is whole blocks, so the cipher holds nothing back between them;
    // the last one also carries the padding block.
    QByteArray scratch(pieceSize + aesBlockLength, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(scratch.data());
    const auto *in = reinterpret_cast<const unsigned char *>(data.data());
    qsizetype remaining = data.size();
    int moved = 0;
    for (; remaining > pieceSize; remaining -= pieceSize, in += pieceSize) {
        if (EVP_EncryptUpdate(context.get(), out, &moved, in, static_cast<int>(pieceSize)) != 1) {
            ERR_clear_error();
            return false;
        }
        piece(QByteArrayView(scratch.constData(), moved));
    }
    int finalMoved = 0;
    if (EVP_EncryptUpdate(context.get(), out, &moved, in, static_cast<int>(remaining)) != 1
        || EVP_EncryptFinal_ex(context.get(), out + moved, &finalMoved) != 1) {
        ERR_clear_error();
        return false;
    }
    piece(QByteArrayView(scratch.constData(), moved + finalMoved));
    return true;
}

std::optional<QByteArray> OSTEncryption::runCryptorOnData(const QByteArray &data, Operation operation)
{
    if (data.size() > INT_MAX - aesBlockLength)
        return std::nullopt;
    const CipherContext context = processCipherContext(operation);
    if (!context)
        return std::nullopt;
    QByteArray output(data.size() + aesBlockLength, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(output.data());
    int moved = 0;
    int finalMoved = 0;
    if (EVP_CipherUpdate(context.get(), out, &moved,
                         reinterpret_cast<const unsigned char *>(data.constData()),
                         static_cast<int>(data.size())) != 1
        || EVP_CipherFinal_ex(context.get(), out + moved, &finalMoved) != 1) {
        ERR_clear_error();
        return std::nullopt;
    }
    output.truncate(moved + finalMoved);
    return output;
}

QString OSTEncryption::md5HashOfString(const QString &text)
{
    if (text.isEmpty())
        return QString();
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

} // namespace ostrel
