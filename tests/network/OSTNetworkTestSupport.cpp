#include "OSTNetworkTestSupport.h"

#include "support/OSTTestSupport.h"

#include <QBuffer>
#include <QDir>
#include <QMutexLocker>
#include <QTcpServer>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>

#include <gtest/gtest.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace ostrel::test {

TestCertificate makeTestCertificate(const QString &folder, CertificateValidity validity)
{
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(EVP_RSA_gen(2048), EVP_PKEY_free);
    std::unique_ptr<X509, decltype(&X509_free)> certificate(X509_new(), X509_free);
    X509_set_version(certificate.get(), 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), 7);
    const long day = 24 * 60 * 60;
    const bool expired = validity == CertificateValidity::Expired;
    X509_gmtime_adj(X509_getm_notBefore(certificate.get()), expired ? -30 * day : -day);
    X509_gmtime_adj(X509_getm_notAfter(certificate.get()), expired ? -2 * day : 30 * day);
    X509_set_pubkey(certificate.get(), key.get());
    X509_NAME *name = X509_get_subject_name(certificate.get());
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char *>("ostrel test"), -1,
                               -1, 0);
    X509_set_issuer_name(certificate.get(), name);
    X509_sign(certificate.get(), key.get(), EVP_sha256());

    TestCertificate result;
    const int length = i2d_X509(certificate.get(), nullptr);
    result.der.resize(length);
    auto *out = reinterpret_cast<unsigned char *>(result.der.data());
    i2d_X509(certificate.get(), &out);

    result.keyPath = QDir(folder).filePath(u"key.pem"_s);
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    PEM_write_bio_PrivateKey(bio.get(), key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    char *pem = nullptr;
    const long pemLength = BIO_get_mem_data(bio.get(), &pem);
    writeFile(result.keyPath, QByteArray(pem, pemLength));
    return result;
}

OSTRequestManager::Completion RequestOutcome::completion()
{
    return [this](const std::optional<QVariantMap> &receivedResponse, const std::optional<OSTError> &receivedError) {
        response = receivedResponse;
        record(receivedError);
    };
}

OSTRequestManager::StringCompletion RequestOutcome::stringCompletion()
{
    return [this](const std::optional<QString> &receivedText, const std::optional<OSTError> &receivedError) {
        text = receivedText;
        record(receivedError);
    };
}

void RequestOutcome::record(const std::optional<OSTError> &receivedError)
{
    error = receivedError;
    thread = QThread::currentThread();
    threadName = QThread::currentThread()->objectName();
    done = true;
}

bool RequestOutcome::wait()
{
    return waitUntil([this] { return done.load(); }, 30000);
}

QByteArray pngOfColor(Qt::GlobalColor color, int side)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(color);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    return png.data();
}

ImageDownload downloadImage(const QUrl &url, const std::function<void()> &whileWaiting)
{
    std::atomic<bool> done{false};
    ImageDownload result;
    OSTRequestManager::sharedManager().imageRequestWithURL(
        url, [&](const QImage &image, const std::optional<OSTError> &error) {
            result = {image, error};
            done = true;
        });
    if (whileWaiting)
        whileWaiting();
    EXPECT_TRUE(waitUntil([&] { return done.load(); }, 30000));
    return result;
}

quint16 closedLoopbackPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost, 0);
    const quint16 port = server.serverPort();
    server.close();
    return port;
}

} // namespace ostrel::test
