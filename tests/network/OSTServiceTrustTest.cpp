// The service certificate vouches for the service's own host only: an image server presenting a
// certificate signed by the service key is refused, while the service itself is trusted.

#include "network/OSTRequestManager.h"
#include "network/OSTServiceConfiguration.h"
#include "network/OSTURLErrorTable.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QBuffer>
#include <QImage>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

struct Download {
    QImage image;
    std::optional<OSTError> error;
};

Download downloadImage(const QUrl &url)
{
    std::atomic<bool> done{false};
    Download result;
    OSTRequestManager::sharedManager().imageRequestWithURL(
        url, [&](const QImage &image, const std::optional<OSTError> &error) {
            result = {image, error};
            done = true;
        });
    EXPECT_TRUE(test::waitUntil([&] { return done.load(); }, 30000));
    return result;
}

QByteArray pngBytes()
{
    QImage picture(2, 2, QImage::Format_ARGB32);
    picture.fill(Qt::blue);
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    picture.save(&png, "PNG");
    return png.data();
}

} // namespace

TEST(ServiceTrust, AnImageHostSignedByTheServiceKeyIsRefusedWhileTheServiceHostIsTrusted)
{
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    server.writeImage(u"logo.png"_s, pngBytes());
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

    const Download fromServiceHost = downloadImage(serviceURL.resolved(QUrl(u"/images/logo.png"_s)));
    ASSERT_FALSE(fromServiceHost.error) << fromServiceHost.error->message.toStdString();
    EXPECT_EQ(fromServiceHost.image.size(), QSize(2, 2));

    const Download fromOtherHost = downloadImage(otherHost);
    ASSERT_TRUE(fromOtherHost.error) << "the service key must not vouch for another host";
    EXPECT_EQ(fromOtherHost.error->code, OSTURLErrorServerCertificateUntrusted);
    EXPECT_TRUE(fromOtherHost.image.isNull());

    const OSTServiceConfiguration &configuration = OSTServiceConfiguration::sharedConfiguration();
    EXPECT_FALSE(configuration.sslConfigurationForURL(otherHost).caCertificates().contains(
        QSslCertificate(configuration.certificateData(), QSsl::Der)));
    EXPECT_TRUE(configuration.sslConfigurationForURL(serviceURL).caCertificates().contains(
        QSslCertificate(configuration.certificateData(), QSsl::Der)));
}
