#include "ServerIdentity.h"

#include <QDateTime>
#include <QFile>
#include <QSaveFile>

#include <openssl/err.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

constexpr int keyBits = 2048;
constexpr long validitySeconds = 10L * 365 * 24 * 60 * 60;

using CertificatePointer = std::unique_ptr<X509, decltype(&X509_free)>;

QString lastOpenSSLError()
{
    char text[256];
    ERR_error_string_n(ERR_get_error(), text, sizeof text);
    ERR_clear_error();
    return QString::fromLatin1(text);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.setPermissions(QFileDevice::ReadOwner | QFileDevice::WriteOwner);
    file.write(bytes);
    return file.commit();
}

std::shared_ptr<EVP_PKEY> keyFromPem(const QByteArray &pem)
{
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.constData(), static_cast<int>(pem.size())),
                                                  BIO_free);
    EVP_PKEY *key = PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr);
    return key ? std::shared_ptr<EVP_PKEY>(key, EVP_PKEY_free) : nullptr;
}

QByteArray pemOfKey(EVP_PKEY *key)
{
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    if (PEM_write_bio_PrivateKey(bio.get(), key, nullptr, nullptr, 0, nullptr, nullptr) != 1)
        return {};
    char *data = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &data);
    return QByteArray(data, length);
}

bool addExtension(X509 *certificate, int nid, const char *value)
{
    X509V3_CTX context;
    X509V3_set_ctx_nodb(&context);
    X509V3_set_ctx(&context, certificate, certificate, nullptr, nullptr, 0);
    X509_EXTENSION *extension = X509V3_EXT_conf_nid(nullptr, &context, nid, value);
    if (!extension)
        return false;
    const bool added = X509_add_ext(certificate, extension, -1) == 1;
    X509_EXTENSION_free(extension);
    return added;
}

QByteArray makeSelfSignedCertificate(EVP_PKEY *key)
{
    CertificatePointer certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), static_cast<long>(QDateTime::currentSecsSinceEpoch()));
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), -60);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), validitySeconds);
    X509_set_pubkey(certificate.get(), key);
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("ostrel-devserver"),
                               -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    const bool extended = addExtension(certificate.get(), NID_subject_alt_name, "DNS:localhost,IP:127.0.0.1,IP:::1")
        && addExtension(certificate.get(), NID_basic_constraints, "critical,CA:TRUE")
        && addExtension(certificate.get(), NID_key_usage, "critical,digitalSignature,keyEncipherment,keyCertSign")
        && addExtension(certificate.get(), NID_ext_key_usage, "serverAuth");
    if (!extended || X509_sign(certificate.get(), key, EVP_sha256()) == 0)
        return {};
    const int length = i2d_X509(certificate.get(), nullptr);
    QByteArray der(length, Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(der.data());
    i2d_X509(certificate.get(), &out);
    return der;
}

} // namespace

ServerIdentity::ServerIdentity(std::shared_ptr<EVP_PKEY> key, QByteArray certificateDer)
    : m_key(std::move(key)), m_certificateDer(std::move(certificateDer))
{
}

std::optional<ServerIdentity> ServerIdentity::loadOrCreate(const QString &keyPath, const QString &certificatePath,
                                                           QString &error)
{
    std::shared_ptr<EVP_PKEY> key;
    const QByteArray storedKey = readFile(keyPath);
    if (!storedKey.isEmpty()) {
        key = keyFromPem(storedKey);
        if (!key) {
            error = u"the key in %1 cannot be read: %2"_s.arg(keyPath, lastOpenSSLError());
            return std::nullopt;
        }
    } else {
        key = std::shared_ptr<EVP_PKEY>(EVP_RSA_gen(keyBits), EVP_PKEY_free);
        if (!key || !writeFile(keyPath, pemOfKey(key.get()))) {
            error = u"cannot make or store a key in %1"_s.arg(keyPath);
            return std::nullopt;
        }
    }

    const QList<QSslCertificate> stored = QSslCertificate::fromData(readFile(certificatePath), QSsl::Pem);
    if (!storedKey.isEmpty() && !stored.isEmpty())
        return ServerIdentity(key, stored.first().toDer());

    const QByteArray der = makeSelfSignedCertificate(key.get());
    if (der.isEmpty() || !writeFile(certificatePath, QSslCertificate(der, QSsl::Der).toPem())) {
        error = u"cannot make or store a certificate in %1"_s.arg(certificatePath);
        return std::nullopt;
    }
    return ServerIdentity(key, der);
}

QString ServerIdentity::certificateBase64() const
{
    return QString::fromLatin1(m_certificateDer.toBase64());
}

QSslCertificate ServerIdentity::sslCertificate() const
{
    return QSslCertificate(m_certificateDer, QSsl::Der);
}

QSslKey ServerIdentity::sslKey() const
{
    return QSslKey(pemOfKey(m_key.get()), QSsl::Rsa, QSsl::Pem, QSsl::PrivateKey);
}

} // namespace ostrel::devserver
