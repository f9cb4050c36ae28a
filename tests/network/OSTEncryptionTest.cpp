#include "OSTNetworkTestSupport.h"

#include "core/OSTLogging.h"
#include "network/OSTEncryption.h"
#include "network/OSTRequestEnvelope.h"
#include "platform/OSTBundle.h"
#include "support/OSTChildProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/rsa.h>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

void installCertificate(const QString &folder, const QString &base64)
{
    OSTBundle::setMainBundlePath(test::writeBundle(folder, {{u"OstrelServiceCertificate"_s, base64}}));
}

QByteArray decryptWithPrivateKey(const QString &keyPath, const QByteArray &ciphertext)
{
    QFile file(keyPath);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray pem = file.readAll();
    std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new_mem_buf(pem.constData(), static_cast<int>(pem.size())),
                                                  BIO_free);
    std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        PEM_read_bio_PrivateKey(bio.get(), nullptr, nullptr, nullptr), EVP_PKEY_free);
    std::unique_ptr<EVP_PKEY_CTX, decltype(&EVP_PKEY_CTX_free)> context(EVP_PKEY_CTX_new(key.get(), nullptr),
                                                                        EVP_PKEY_CTX_free);
    EVP_PKEY_decrypt_init(context.get());
    EVP_PKEY_CTX_set_rsa_padding(context.get(), RSA_PKCS1_PADDING);
    size_t length = 512;
    QByteArray plain(512, '\0');
    const auto *input = reinterpret_cast<const unsigned char *>(ciphertext.constData());
    if (EVP_PKEY_decrypt(context.get(), reinterpret_cast<unsigned char *>(plain.data()), &length, input,
                         static_cast<size_t>(ciphertext.size())) <= 0)
        return {};
    plain.truncate(static_cast<qsizetype>(length));
    return plain;
}

// One block under the process key and IV, without padding: decrypting it must fail the padding
// check, since its last byte is 0.
QByteArray blockWithBadPadding()
{
    std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)> context(EVP_CIPHER_CTX_new(),
                                                                            EVP_CIPHER_CTX_free);
    const QByteArray key = *OSTEncryption::aesKey();
    const QByteArray vector = *OSTEncryption::initializationVector();
    EVP_EncryptInit_ex(context.get(), EVP_aes_256_cbc(), nullptr,
                       reinterpret_cast<const unsigned char *>(key.constData()),
                       reinterpret_cast<const unsigned char *>(vector.constData()));
    EVP_CIPHER_CTX_set_padding(context.get(), 0);
    QByteArray output(32, '\0');
    int moved = 0;
    const QByteArray zeros(16, '\0');
    EVP_EncryptUpdate(context.get(), reinterpret_cast<unsigned char *>(output.data()), &moved,
                      reinterpret_cast<const unsigned char *>(zeros.constData()), 16);
    output.truncate(moved);
    return output;
}

QJsonObject envelopeOf(const QVariantMap &parameters)
{
    return QJsonDocument::fromJson(OSTRequestEnvelope::bodyForParameters(parameters)).object();
}

QByteArray runOpenSSL(const QStringList &arguments)
{
    QProcess openssl;
    openssl.start(u"openssl"_s, arguments);
    EXPECT_TRUE(openssl.waitForFinished(30000));
    EXPECT_EQ(openssl.exitCode(), 0) << openssl.readAllStandardError().toStdString();
    return openssl.readAllStandardOutput();
}

// Prints the envelope's "iv" and "encrypted_key" for a certificate given on the command line.
const bool envelopeChildRegistered = test::OSTChildProcess::registerMode(u"print-envelope"_s, [](const QStringList &arguments) {
    QTemporaryDir folder;
    installCertificate(folder.path(), arguments.last());
    const QJsonObject first = envelopeOf({{u"n"_s, 1}});
    const QJsonObject second = envelopeOf({{u"n"_s, 2}});
    if (first.value(u"iv"_s) != second.value(u"iv"_s) || first.value(u"encrypted_key"_s) != second.value(u"encrypted_key"_s))
        return 4;
    QTextStream(stdout) << first.value(u"iv"_s).toString() << ' ' << first.value(u"encrypted_key"_s).toString() << Qt::endl;
    return 0;
});

} // namespace

TEST(Encryption, EncryptsAndDecryptsWithTheProcessKeyAndRefusesDamagedBodies)
{
    ASSERT_TRUE(OSTEncryption::aesKey());
    ASSERT_TRUE(OSTEncryption::initializationVector());
    EXPECT_EQ(OSTEncryption::aesKey()->size(), 32);
    EXPECT_EQ(OSTEncryption::initializationVector()->size(), 16);
    EXPECT_EQ(OSTEncryption::aesKey(), OSTEncryption::aesKey());
    EXPECT_NE(OSTEncryption::aesKey()->left(16), *OSTEncryption::initializationVector());

    const std::optional<QByteArray> empty = OSTEncryption::encryptData(QByteArray());
    ASSERT_TRUE(empty);
    EXPECT_EQ(empty->size(), 16);
    EXPECT_EQ(OSTEncryption::decryptData(*empty), QByteArray());

    const QByteArray text = "{\"launch_type\":\"install\",\"caf\\u00e9\":\"caf\xc3\xa9\"}";
    const std::optional<QByteArray> sealed = OSTEncryption::encryptData(text);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(sealed->size() % 16, 0);
    EXPECT_GT(sealed->size(), text.size());
    EXPECT_EQ(OSTEncryption::decryptData(*sealed), text);
    EXPECT_EQ(OSTEncryption::runCryptorOnData(*sealed, OSTEncryption::Operation::Decrypt), text);

    EXPECT_FALSE(OSTEncryption::decryptData(sealed->left(sealed->size() - 1)));
    EXPECT_FALSE(OSTEncryption::decryptData("not ciphertext"));
    EXPECT_FALSE(OSTEncryption::decryptData(blockWithBadPadding()));
    EXPECT_FALSE(OSTEncryption::decryptData(QByteArray()));
}

TEST(Encryption, MD5HashIsLowerCaseHexOfUTF8)
{
    EXPECT_EQ(OSTEncryption::md5HashOfString(QString()), QString());
    EXPECT_EQ(OSTEncryption::md5HashOfString(u""_s), QString());
    EXPECT_EQ(OSTEncryption::md5HashOfString(u"abc"_s), u"900150983cd24fb0d6963f7d28e17f72"_s);
    // UTF-8 bytes of "é" are C3 A9.
    EXPECT_EQ(OSTEncryption::md5HashOfString(u"\u00e9"_s),
              QString::fromLatin1(QCryptographicHash::hash("\xc3\xa9", QCryptographicHash::Md5).toHex()));
}

TEST(Encryption, TheCertificateKeyWrapsTheAESKeyEvenWhenTheCertificateHasExpired)
{
    QTemporaryDir folder;
    const test::TestCertificate certificate = test::makeTestCertificate(folder.path(), test::CertificateValidity::Expired);
    installCertificate(folder.filePath(u"bundle"_s), certificate.base64());

    ASSERT_NE(OSTEncryption::publicKey(), nullptr);
    const std::optional<QByteArray> wrapped = OSTEncryption::encryptedAESKey();
    ASSERT_TRUE(wrapped);
    EXPECT_EQ(wrapped->size(), 256);
    EXPECT_EQ(OSTEncryption::encryptedAESKey(), wrapped);
    EXPECT_EQ(decryptWithPrivateKey(certificate.keyPath, *wrapped), *OSTEncryption::aesKey());
}

TEST(Encryption, WithoutAUsableCertificateTheEnvelopeStillGoesOutWithAnEmptyKey)
{
    QTemporaryDir folder;
    OSTLogging::setLoggingLevel(1);
    installCertificate(folder.path(), u"bm90IGEgY2VydGlmaWNhdGU="_s);
    QJsonObject envelope;
    const QString log = test::captureStandardError([&] { envelope = envelopeOf({{u"a"_s, 1}}); });

    EXPECT_EQ(OSTEncryption::publicKey(), nullptr);
    EXPECT_FALSE(OSTEncryption::encryptedAESKey());
    EXPECT_TRUE(log.contains(u"Ostrel Error: The service certificate could not be read"_s)) << log.toStdString();
    EXPECT_EQ(envelope.keys(), (QStringList{u"encrypted_data"_s, u"encrypted_key"_s, u"iv"_s}));
    EXPECT_EQ(envelope.value(u"encrypted_key"_s).toString(), QString());
    EXPECT_EQ(QByteArray::fromBase64(envelope.value(u"iv"_s).toString().toLatin1()), *OSTEncryption::initializationVector());
    EXPECT_EQ(OSTEncryption::decryptData(QByteArray::fromBase64(envelope.value(u"encrypted_data"_s).toString().toLatin1())),
              QByteArray("{\"a\":1}"));
}

TEST(Encryption, EveryProcessMakesItsOwnKeyAndVector)
{
    QTemporaryDir folder;
    const test::TestCertificate certificate = test::makeTestCertificate(folder.path(), test::CertificateValidity::Current);
    const auto runChild = [&] {
        QProcess child;
        child.start(QCoreApplication::applicationFilePath(),
                    {test::OSTChildProcess::argumentFor(u"print-envelope"_s), certificate.base64()});
        EXPECT_TRUE(child.waitForFinished(30000));
        EXPECT_EQ(child.exitCode(), 0);
        return QString::fromLatin1(child.readAllStandardOutput()).trimmed().split(u' ');
    };
    const QStringList first = runChild();
    const QStringList second = runChild();
    ASSERT_EQ(first.size(), 2);
    ASSERT_EQ(second.size(), 2);
    EXPECT_NE(first.at(0), second.at(0));
    EXPECT_NE(first.at(1), second.at(1));
    EXPECT_EQ(QByteArray::fromBase64(first.at(0).toLatin1()).size(), 16);
    EXPECT_EQ(QByteArray::fromBase64(first.at(1).toLatin1()).size(), 256);
}

TEST(Interoperability, TheOpenSSLCommandLineOpensTheEnvelope)
{
    QTemporaryDir folder;
    const test::TestCertificate certificate = test::makeTestCertificate(folder.path(), test::CertificateValidity::Current);
    installCertificate(folder.filePath(u"bundle"_s), certificate.base64());
    const QVariantMap parameters{{u"launch_type"_s, u"install"_s},
                                 {u"cached_versions"_s, QVariantList{u"v1"_s, u"v2"_s}},
                                 {u"ost_resend"_s, false},
                                 {u"name"_s, u"Zoë \"quoted\""_s},
                                 {u"count"_s, 42}};
    const QJsonObject envelope = envelopeOf(parameters);

    const auto writeMember = [&](const QString &member) {
        const QString path = folder.filePath(member + u".bin"_s);
        test::writeFile(path, QByteArray::fromBase64(envelope.value(member).toString().toLatin1()));
        return path;
    };
    const QString keyFile = folder.filePath(u"aes.key"_s);
    runOpenSSL({u"pkeyutl"_s, u"-decrypt"_s, u"-inkey"_s, certificate.keyPath, u"-pkeyopt"_s,
                u"rsa_padding_mode:pkcs1"_s, u"-in"_s, writeMember(u"encrypted_key"_s), u"-out"_s, keyFile});
    QFile keyBytes(keyFile);
    ASSERT_TRUE(keyBytes.open(QIODevice::ReadOnly));
    const QByteArray key = keyBytes.readAll();
    ASSERT_EQ(key.size(), 32);
    const QByteArray vector = QByteArray::fromBase64(envelope.value(u"iv"_s).toString().toLatin1());

    const QByteArray plaintext =
        runOpenSSL({u"enc"_s, u"-d"_s, u"-aes-256-cbc"_s, u"-K"_s, QString::fromLatin1(key.toHex()), u"-iv"_s,
                    QString::fromLatin1(vector.toHex()), u"-in"_s, writeMember(u"encrypted_data"_s)});
    EXPECT_EQ(QJsonDocument::fromJson(plaintext).object().toVariantMap(), parameters);

    // And the other way: what the command line encrypts under that key, the SDK reads.
    const QString answerFile = folder.filePath(u"answer.json"_s);
    test::writeFile(answerFile, "{\"status\":\"OK\"}");
    const QByteArray answer =
        runOpenSSL({u"enc"_s, u"-aes-256-cbc"_s, u"-K"_s, QString::fromLatin1(key.toHex()), u"-iv"_s,
                    QString::fromLatin1(vector.toHex()), u"-in"_s, answerFile});
    EXPECT_EQ(OSTEncryption::decryptData(answer), QByteArray("{\"status\":\"OK\"}"));
}
