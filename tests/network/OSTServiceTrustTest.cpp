// The service certificate vouches for the service's own host only: an image server presenting a
// certificate signed by the service key is refused, while the service itself is trusted.

#include "OSTNetworkTestSupport.h"

#include "network/OSTServiceConfiguration.h"
#include "network/OSTURLErrorTable.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(ServiceTrust, AnImageHostSignedByTheServiceKeyIsRefusedWhileTheServiceHostIsTrusted)
{
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    server.writeImage(u"logo.png"_s, test::pngOfColor(Qt::blue, 2));
    ASSERT_TRUE(server.start({.tls = true}));
    // The service is known by its address; the same server's certificate (made and signed with
    // the service key) also names "localhost", which here stands for any other image host.
    QUrl serviceURL = server.serviceURL();
    serviceURL.setHost(u"127.0.0.1"_s);
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path(), {{u"OstrelServiceURL"_s, serviceURL.toString()},
                                                                   {u"OstrelServiceCertificate"_s,
                                                                    server.certificateBase64()}}));
    QUrl otherHost = serviceURL.resolved(QUrl(u"/images/logo.png"_s));
    otherHost.setHost(u"localhost"_s);

    const test::ImageDownload fromServiceHost = test::downloadImage(serviceURL.resolved(QUrl(u"/images/logo.png"_s)));
    ASSERT_FALSE(fromServiceHost.error) << fromServiceHost.error->message.toStdString();
    EXPECT_EQ(fromServiceHost.image.size(), QSize(2, 2));

    const test::ImageDownload fromOtherHost = test::downloadImage(otherHost);
    ASSERT_TRUE(fromOtherHost.error) << "the service key must not vouch for another host";
    EXPECT_EQ(fromOtherHost.error->code, OSTURLErrorServerCertificateUntrusted);
    EXPECT_TRUE(fromOtherHost.image.isNull());

    const OSTServiceConfiguration &configuration = OSTServiceConfiguration::sharedConfiguration();
    EXPECT_FALSE(configuration.sslConfigurationForURL(otherHost).caCertificates().contains(
        QSslCertificate(configuration.certificateData(), QSsl::Der)));
    EXPECT_TRUE(configuration.sslConfigurationForURL(serviceURL).caCertificates().contains(
        QSslCertificate(configuration.certificateData(), QSsl::Der)));
}
