// Attribution and links end to end against ostrel-devserver: the records a launch reports, their
// persistence across processes, tracking links, an application opened by a link, a deep link
// opened through the URL hook, and the fingerprint that launch and event requests carry.

#include <ostrel/Ostrel.h>

#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTExperienceManager.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTURLOpener.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"
#include "users/OSTAttributionManager.h"

#include <QGuiApplication>
#include <QScreen>
#include <QSysInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QVariantMap attributionConfiguration = test::jsonObject(R"({
    "referral": 1, "link_id": "install-link", "link_name": "Spring", "source_name": "newsletter",
    "targeting_id": "T1", "targeting_name": "SPRING", "attribution_params": {"campaign": "spring"},
    "sender": {"first_name": "Ada"}, "return_referral": 1, "return_link_id": "return-link",
    "return_source_name": "mail"})");

// The fingerprint keys whose desktop values do not depend on the moment.
void expectDesktopFingerprint(const QVariantMap &parameters)
{
    EXPECT_EQ(parameters.value(u"device_id"_s), OSTUserDefaultsManager::sharedManager().objectForKey(u"ost_device_id"_s));
    EXPECT_EQ(parameters.value(u"device_model"_s),
              u"%1 %2 %3"_s.arg(QSysInfo::productType(), QSysInfo::productVersion(), QSysInfo::currentCpuArchitecture()));
    EXPECT_EQ(parameters.value(u"os_name"_s), QSysInfo::productType());
    EXPECT_EQ(parameters.value(u"os_version"_s), QSysInfo::productVersion());
    const QScreen *screen = QGuiApplication::primaryScreen();
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(parameters.value(u"device_resolution"_s).toString(),
              u"%1x%2"_s.arg(screen->size().width()).arg(screen->size().height()));
    EXPECT_EQ(parameters.value(u"device_density"_s).toString(), u"1"_s);
    EXPECT_EQ(parameters.value(u"carrier"_s), u"NA"_s);
    EXPECT_EQ(parameters.value(u"token"_s), u"test-token"_s);
    EXPECT_EQ(parameters.value(u"device_timestamp"_s).toString().size(), 26);
}

// A first run of the installation, in its own process writing the parent's data folder.
const bool firstRunRegistered =
    test::OSTChildProcess::registerMode(u"attribution-first-run"_s, [](const QStringList &arguments) {
        test::OSTChildProcess::adoptParentData(arguments);
        OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
        Ostrel::start();
        if (!test::launchAndWait())
            return 1;
        std::optional<OSTAttribution> latest;
        Ostrel::getLatestAttributionWithCompletion([&](const std::optional<OSTAttribution> &a) { latest = a; });
        return latest && latest->linkID == u"return-link"_s ? 0 : 2;
    });

class AttributionLaunch : public ::testing::Test {
protected:
    void SetUp() override
    {
        OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
        OSTURLOpener::setHandler([this](const QUrl &url) {
            opened.push_back(url);
            return true;
        });
    }

    void startService(const QStringList &faults = {}, const QVariantMap &configuration = {})
    {
        server.writeLaunchConfiguration(configuration);
        ASSERT_TRUE(server.start({.faults = faults}));
        server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s},
                                                 {u"OstrelLinkHosts"_s, QVariantList{u"127.0.0.1"_s, u"ost.li"_s}}});
    }

    // The endpoints the service was asked, in order, apart from event uploads.
    QStringList recordedEndpoints() const
    {
        QStringList endpoints;
        for (const test::OSTRecordedRequest &request : server.recordedRequests())
            endpoints.append(request.endpoint);
        endpoints.removeAll(u"event"_s);
        return endpoints;
    }

    std::optional<QString> trackingLink(const QString &targeting, const QVariantMap &parameters)
    {
        std::optional<std::optional<QString>> link;
        Ostrel::getLinkForTargeting(targeting, parameters, [&](const std::optional<QString> &l) { link = l; });
        EXPECT_TRUE(test::waitUntil([&] { return link.has_value(); }));
        return link.value_or(std::nullopt);
    }

    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    std::vector<QUrl> opened;
};

} // namespace

TEST_F(AttributionLaunch, RecordsArriveAfterTheLaunchPersistAndRestartAsTheInstall)
{
    startService({}, attributionConfiguration);
    ASSERT_EQ(test::OSTChildProcess::runSharingData(u"attribution-first-run"_s, bundle.path()), 0);
    const auto launches = server.recordedRequests(u"launch_v3"_s);
    ASSERT_EQ(launches.size(), 1);
    expectDesktopFingerprint(launches.first().parameters);
    EXPECT_EQ(launches.first().parameters.value(u"advertiser_id"_s), QString());

    // This process restarts the installation; the service now reports no return.
    server.writeLaunchConfiguration({{u"link_name"_s, u"Summer"_s}});
    Ostrel::start();
    std::vector<std::optional<OSTAttribution>> installs;
    std::vector<std::optional<OSTAttribution>> latests;
    Ostrel::getInstallAttributionWithCompletion([&](const auto &a) { installs.push_back(a); });
    Ostrel::getLatestAttributionWithCompletion([&](const auto &a) { latests.push_back(a); });
    EXPECT_TRUE(installs.empty() && latests.empty()) << "records wait for the launch";
    ASSERT_TRUE(test::launchAndWait());

    ASSERT_EQ(installs.size(), 1u);
    ASSERT_EQ(latests.size(), 1u);
    ASSERT_TRUE(installs.front());
    EXPECT_EQ(installs.front()->linkID, u"install-link"_s) << "kept from the first run";
    EXPECT_EQ(installs.front()->linkName, u"Summer"_s);
    EXPECT_EQ(installs.front()->parameters, QVariantMap()) << "emptied: this launch reported none";
    ASSERT_TRUE(latests.front());
    EXPECT_EQ(latests.front()->linkID, u"install-link"_s) << "the latest starts each process as the install";
    EXPECT_EQ(latests.front()->sourceName, u"newsletter"_s);
}

TEST_F(AttributionLaunch, TrackingLinkComesBackAndItsClickOpensTheDeepLinkThroughTheHook)
{
    startService();
    Ostrel::start();
    ASSERT_TRUE(test::launchAndWait());

    const std::optional<QString> link = trackingLink(u"summer sale"_s, {{u"deeplink"_s, u"myapp://promo?id=7"_s}});
    ASSERT_TRUE(link);
    EXPECT_TRUE(link->startsWith(server.serviceURL().toString())) << link->toStdString();
    const auto requests = server.recordedRequests(u"tracking_link"_s);
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests.first().parameters.value(u"targeting"_s), u"SUMMER SALE"_s);
    EXPECT_EQ(requests.first().parameters.value(u"additional_params"_s),
              QVariant(QVariantMap{{u"deeplink"_s, u"myapp://promo?id=7"_s}}));
    expectDesktopFingerprint(requests.first().parameters);

    EXPECT_FALSE(Ostrel::continueUserActivity(QUrl(*link), u"com.example.reading"_s));
    ASSERT_TRUE(Ostrel::continueUserActivity(QUrl(*link)));
    ASSERT_TRUE(test::waitUntil([&] { return !opened.empty(); }));
    EXPECT_EQ(opened, std::vector<QUrl>{QUrl(u"myapp://promo?id=7"_s)});
    const auto clicks = server.recordedRequests(u"universal_link_click"_s);
    ASSERT_EQ(clicks.size(), 1);
    EXPECT_EQ(clicks.first().parameters.value(u"url"_s), *link);
    EXPECT_EQ(clicks.first().parameters.value(u"advertiser_id"_s), QString());

    std::optional<OSTAttribution> latest;
    Ostrel::getLatestAttributionWithCompletion([&](const auto &a) { latest = a; });
    ASSERT_TRUE(latest);
    EXPECT_EQ(latest->targetingKey, u"SUMMER SALE"_s);
    EXPECT_EQ(OSTExperienceManager::sharedManager().replaceDynamicVariables(u"{return.deeplink}"_s),
              u"myapp://promo?id=7"_s);
    EXPECT_EQ(recordedEndpoints().count(u"launch_v3"_s), 1) << "an application already launched does not launch again";
}

TEST_F(AttributionLaunch, OpenedByALinkTheClickGoesFirstAndTheLaunchAfterIt)
{
    startService();
    Ostrel::start();
    const QUrl link(server.serviceURL().toString() + u"/l/un known"_s);
    ASSERT_TRUE(test::launchAndWait({.openedURL = link}));

    EXPECT_EQ(recordedEndpoints(), (QStringList{u"universal_link_click"_s, u"launch_v3"_s}));
    EXPECT_EQ(server.recordedRequests(u"universal_link_click"_s).first().parameters.value(u"url"_s),
              server.serviceURL().toString() + u"/l/un%20known"_s)
        << "the address in its encoded form";
    EXPECT_TRUE(opened.empty()) << "an unknown link has no deep link";
}

TEST_F(AttributionLaunch, RefusedTokenOnTheLinkClickInvalidatesTheLaunch)
{
    startService({u"universal_link_click:status=401"_s});
    Ostrel::start();
    const QString log = test::captureStandardError([&] {
        EXPECT_FALSE(test::launchAndWait({.openedURL = QUrl(u"https://ost.li/abc"_s)})) << "the launch blocks get NO";
    });
    EXPECT_TRUE(log.contains(u"Invalid token. Aborting launch sequence."_s)) << log.toStdString();
    EXPECT_EQ(recordedEndpoints(), QStringList{u"universal_link_click"_s}) << "no launch after the refusal";
    EXPECT_FALSE(OSTServiceManager::sharedManager().isInitialized());
}

TEST_F(AttributionLaunch, LinksOnTheCommandLineOpenTheApplication)
{
    EXPECT_EQ(OSTApplication::linkFromArguments({u"app"_s, u"--verbose"_s, u"file.txt"_s,
                                                 u"mailto:a@b.c"_s, u"https://ost.li/x"_s, u"http://b.example"_s}),
              QUrl(u"https://ost.li/x"_s));
    EXPECT_EQ(OSTApplication::linkFromArguments({u"https://ost.li/first-is-the-program"_s}), QUrl());
    EXPECT_EQ(OSTApplication::linkFromArguments({u"app"_s, u"https://"_s}), QUrl());
}

TEST_F(AttributionLaunch, EventsCarryTheFingerprintAndInstallAttribution)
{
    QVariantMap installOnly = attributionConfiguration;
    installOnly.removeIf([](const auto &entry) { return entry.key().startsWith(u"return_"_s); });
    installOnly.remove(u"targeting_name"_s);
    startService({}, installOnly);
    Ostrel::start();
    ASSERT_TRUE(test::launchAndWait());
    Ostrel::trackEventWithName(u"Tapped"_s, {});
    Ostrel::flushEvents();
    QVariantMap tapped;
    ASSERT_TRUE(test::waitUntil([&] {
        for (const QVariantMap &event : server.storedEvents()) {
            if (event.value(u"event_type"_s) == u"Tapped"_s)
                tapped = event;
        }
        return !tapped.isEmpty();
    }));
    expectDesktopFingerprint(tapped);
    EXPECT_EQ(tapped.value(u"ost_install_source"_s), u"newsletter"_s);
    EXPECT_EQ(tapped.value(u"ost_install_targeting_id"_s), u"T1"_s);
    EXPECT_FALSE(tapped.contains(u"ost_install_targeting"_s)) << "a field the record lacks is left out, not sent as \"\"";
    EXPECT_EQ(tapped.value(u"ost_return_source"_s), u"newsletter"_s) << "the first launch's latest is the install record";
    EXPECT_FALSE(tapped.contains(u"ost_return_targeting"_s));
}
