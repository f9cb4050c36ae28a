#pragma once

#include "network/OSTEncryption.h"
#include "platform/OSTBundle.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QString>

#include <benchmark/benchmark.h>

#include <openssl/evp.h>
#include <openssl/x509.h>

#include <memory>

namespace ostrel::bench {

// A certificate whose key wraps the payload key; made once, as a service operator's would be.
inline QString makeCertificateBase64()
{
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(2048), EVP_PKEY_free);
    std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), 0);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), 86400);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("bench"), -1, -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());
    QByteArray der(i2d_X509(certificate.get(), nullptr), Qt::Uninitialized);
    auto *out = reinterpret_cast<unsigned char *>(der.data());
    i2d_X509(certificate.get(), &out);
    return QString::fromLatin1(der.toBase64());
}

// Makes `folder` the main bundle, naming a fresh service certificate, and performs the one-time
// RSA step, which is not part of any request's cost. Returns whether encryption is ready.
inline bool installServiceBundle(const QString &folder)
{
    QFile info(QDir(folder).filePath(QStringLiteral("Info.json")));
    if (!info.open(QIODevice::WriteOnly))
        return false;
    info.write(QJsonDocument(QJsonObject{{QStringLiteral("OstrelServiceCertificate"), makeCertificateBase64()}}).toJson());
    info.close();
    OSTBundle::setMainBundlePath(folder);
    return OSTEncryption::encryptedAESKey().has_value();
}

// OpenSSL alone: one EVP AES-256-CBC pass with padding over `bytes` bytes per iteration, the
// yardstick the request benchmarks are measured against.
inline void runRawAES256CBC(benchmark::State &state, qsizetype bytes)
{
    const QByteArray input(bytes, 'j');
    const QByteArray key = *OSTEncryption::aesKey();
    const QByteArray vector = *OSTEncryption::initializationVector();
    QByteArray output(input.size() + 16, Qt::Uninitialized);
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(), EVP_CIPHER_CTX_free);
    for (auto _ : state) {
        int moved = 0;
        int finalMoved = 0;
        EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                           reinterpret_cast<const unsigned char *>(key.constData()),
                           reinterpret_cast<const unsigned char *>(vector.constData()));
        auto *out = reinterpret_cast<unsigned char *>(output.data());
        EVP_EncryptUpdate(context.get(), out, &moved, reinterpret_cast<const unsigned char *>(input.constData()),
                          static_cast<int>(input.size()));
        EVP_EncryptFinal_ex(context.get(), out + moved, &finalMoved);
        benchmark::DoNotOptimize(output.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * input.size());
}

} // namespace ostrel::bench
