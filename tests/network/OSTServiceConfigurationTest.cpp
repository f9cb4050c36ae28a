#include "network/OSTServiceConfiguration.h"
#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ServiceConfiguration, EndpointsAreAppendedAsOnePathComponent)
{
    EXPECT_EQ(OSTServiceConfiguration(u"http://127.0.0.1:8733"_s, {}).urlForEndpoint(u"launch_v3"_s),
              QUrl(u"http://127.0.0.1:8733/launch_v3"_s));
    EXPECT_EQ(OSTServiceConfiguration(u"https://api.example.test/v3/"_s, {}).urlForEndpoint(u"event"_s),
              QUrl(u"https://api.example.test/v3/event"_s));
    EXPECT_EQ(OSTServiceConfiguration(u"https://api.example.test/v3"_s, {}).urlForEndpoint(u"event"_s),
              QUrl(u"https://api.example.test/v3/event"_s));
    // Only http and https origins are service URLs.
    EXPECT_FALSE(OSTServiceConfiguration(u"file:///tmp/service"_s, {}).urlForEndpoint(u"event"_s).isValid());
    EXPECT_FALSE(OSTServiceConfiguration(u"not a url"_s, {}).serviceURL().isValid());
}

TEST(ServiceConfiguration, TheCertificateReadsBackToItsBytes)
{
    QByteArray der(1344, '\0');
    for (int index = 0; index < der.size(); ++index)
        der[index] = static_cast<char>(index * 7);
    const QString base64 = QString::fromLatin1(der.toBase64());
    EXPECT_EQ(OSTServiceConfiguration(u"http://127.0.0.1:1"_s, base64).certificateData(), der);

    // Line breaks from a pasted PEM body do not matter; text that is not base64 yields nothing.
    QString wrapped = base64;
    wrapped.insert(64, u'\n');
    EXPECT_EQ(OSTServiceConfiguration(u"http://127.0.0.1:1"_s, wrapped).certificateData(), der);
    EXPECT_TRUE(OSTServiceConfiguration(u"http://127.0.0.1:1"_s, u"***"_s).certificateData().isEmpty());
}

TEST(ServiceConfiguration, TheSharedConfigurationComesFromTheMainBundle)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {{u"OstrelServiceURL"_s, u"http://localhost:9/base"_s},
                                                                   {u"OstrelServiceCertificate"_s, u"QUJD"_s}}));
    const OSTServiceConfiguration &configuration = OSTServiceConfiguration::sharedConfiguration();
    EXPECT_EQ(configuration.urlForEndpoint(u"tracking_link"_s), QUrl(u"http://localhost:9/base/tracking_link"_s));
    EXPECT_EQ(configuration.certificateData(), QByteArray("ABC"));
    EXPECT_EQ(configuration.sslConfigurationForURL(configuration.serviceURL()).peerVerifyMode(), QSslSocket::VerifyPeer);
    // Read once: a later bundle does not change the process's configuration.
    OSTBundle::setMainBundlePath(test::writeBundle(folder.filePath(u"other"_s), {}));
    EXPECT_EQ(OSTServiceConfiguration::sharedConfiguration().serviceURL(), QUrl(u"http://localhost:9/base"_s));
}
