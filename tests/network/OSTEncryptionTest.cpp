#include "OSTNetworkTestSupport.h"

#include "core/OSTLogging.h"
#include "network/OSTEncryption.h"
#include "network/OSTRequestEnvelope.h"
#include "platform/OSTBundle.h"
#include "support/OSTChildProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextStream>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

void installCertificate(const QString &folder, const QString &base64)
{
    OSTBundle::setMainBundlePath(test::writeBundle(folder, {{u"OstrelServiceCertificate"_s, base64}}));
}

QJsonObject envelopeOf(const QVariantMap &parameters)
{
    return QJsonDocument::fromJson(OSTRequestEnvelope::bodyForParameters(parameters)).object();
}

QByteArray memberBytes(const QJsonObject &envelope, const QString &member)
{
    return QByteArray::fromBase64(envelope.value(member).toString().toLatin1());
}

// The openssl command line on `input`, as another implementation of the same ciphers.
QByteArray runOpenSSL(const QStringList &arguments, const QByteArray &input)
{
    QProcess openssl;
    openssl.start(u"openssl"_s, arguments);
    openssl.write(input);
    openssl.closeWriteChannel();
    EXPECT_TRUE(openssl.waitForFinished(30000));
    EXPECT_EQ(openssl.exitCode(), 0) << openssl.readAllStandardError().toStdString();
    return openssl.readAllStandardOutput();
}

QByteArray unwrapKey(const test::TestCertificate &certificate, const QByteArray &wrapped)
{
    return runOpenSSL({u"pkeyutl"_s, u"-decrypt"_s, u"-inkey"_s, certificate.keyPath, u"-pkeyopt"_s,
                       u"rsa_padding_mode:pkcs1"_s}, wrapped);
}

QByteArray aesWithOpenSSL(const QStringList &options, const QByteArray &key, const QByteArray &vector,
                          const QByteArray &input)
{
    return runOpenSSL(QStringList{u"enc"_s, u"-aes-256-cbc"_s, u"-K"_s, QString::fromLatin1(key.toHex()), u"-iv"_s,
                                  QString::fromLatin1(vector.toHex())} + options, input);
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
    EXPECT_EQ(OSTEncryption::aesKey(), OSTEncryption::aesKey());
    const std::optional<QByteArray> empty = OSTEncryption::encryptData(QByteArray());
    ASSERT_TRUE(empty);
    EXPECT_EQ(OSTEncryption::decryptData(*empty), QByteArray());

    const QByteArray text = "{\"launch_type\":\"install\",\"caf\\u00e9\":\"caf\xc3\xa9\"}";
    const std::optional<QByteArray> sealed = OSTEncryption::encryptData(text);
    ASSERT_TRUE(sealed);
    EXPECT_EQ(OSTEncryption::decryptData(*sealed), text);
    EXPECT_EQ(OSTEncryption::runCryptorOnData(*sealed, OSTEncryption::Operation::Decrypt), text);

    EXPECT_FALSE(OSTEncryption::decryptData(sealed->left(sealed->size() - 1)));
    EXPECT_FALSE(OSTEncryption::decryptData("not ciphertext"));
    // One block of zeros sealed without padding: its last byte, 0, fails the padding check.
    EXPECT_FALSE(OSTEncryption::decryptData(aesWithOpenSSL({u"-nopad"_s}, *OSTEncryption::aesKey(),
                                                           *OSTEncryption::initializationVector(), QByteArray(16, '\0'))));
    EXPECT_FALSE(OSTEncryption::decryptData(QByteArray()));
}

TEST(Encryption, MD5HashIsLowerCaseHexOfUTF8)
{
    EXPECT_EQ(OSTEncryption::md5HashOfString(QString()), QString());
    EXPECT_EQ(OSTEncryption::md5HashOfString(u"abc"_s), u"900150983cd24fb0d6963f7d28e17f72"_s);
    EXPECT_EQ(OSTEncryption::md5HashOfString(u"\u00e9"_s), u"66ddcd97cfdeabb2f6fb8a999b4bc76f"_s) << "of UTF-8 C3 A9";
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
    EXPECT_EQ(unwrapKey(certificate, *wrapped), *OSTEncryption::aesKey());
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
    EXPECT_EQ(memberBytes(envelope, u"iv"_s), *OSTEncryption::initializationVector());
    EXPECT_EQ(OSTEncryption::decryptData(memberBytes(envelope, u"encrypted_data"_s)), QByteArray("{\"a\":1}"));
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
    const QByteArray key = unwrapKey(certificate, memberBytes(envelope, u"encrypted_key"_s));
    ASSERT_EQ(key.size(), 32);
    const QByteArray vector = memberBytes(envelope, u"iv"_s);
    const QByteArray plaintext = aesWithOpenSSL({u"-d"_s}, key, vector, memberBytes(envelope, u"encrypted_data"_s));
    EXPECT_EQ(QJsonDocument::fromJson(plaintext).object().toVariantMap(), parameters);

    // And the other way: what the command line encrypts under that key, the SDK reads.
    EXPECT_EQ(OSTEncryption::decryptData(aesWithOpenSSL({}, key, vector, "{\"status\":\"OK\"}")),
              QByteArray("{\"status\":\"OK\"}"));
}
