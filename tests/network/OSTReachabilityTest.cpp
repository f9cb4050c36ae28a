#include <ostrel/OSTConstants.h>

#include "network/OSTReachability.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QThread>

#include <gtest/gtest.h>

#include <thread>

using namespace ostrel;

namespace {

constexpr std::uint32_t reachable = OSTReachabilityFlagReachable;
constexpr std::uint32_t required = OSTReachabilityFlagConnectionRequired;
constexpr std::uint32_t onTraffic = OSTReachabilityFlagConnectionOnTraffic;
constexpr std::uint32_t onDemand = OSTReachabilityFlagConnectionOnDemand;
constexpr std::uint32_t intervention = OSTReachabilityFlagInterventionRequired;
constexpr std::uint32_t wwan = OSTReachabilityFlagIsWWAN;

} // namespace

TEST(Reachability, StatusForFlagsFollowsTheTableInOrder)
{
    EXPECT_EQ(OSTReachability::statusForFlags(0), 1);
    EXPECT_EQ(OSTReachability::statusForFlags(wwan), 1);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable), 3);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | wwan), 3);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required | wwan), 2);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required), 0);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required | onDemand), 3);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required | onTraffic), 3);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required | onDemand | intervention), 0);
    EXPECT_EQ(OSTReachability::statusForFlags(reachable | required | onDemand | intervention | wwan), 2);
}

TEST(Reachability, NetworkStatesBecomeFlags)
{
    using R = QNetworkInformation::Reachability;
    using T = QNetworkInformation::TransportMedium;
    EXPECT_EQ(OSTReachability::flagsForNetworkState(R::Unknown, T::WiFi, false), std::nullopt);
    EXPECT_EQ(OSTReachability::flagsForNetworkState(R::Disconnected, T::Unknown, false), 0u);
    EXPECT_EQ(OSTReachability::statusForFlags(*OSTReachability::flagsForNetworkState(R::Local, T::Ethernet, false)), 1);
    EXPECT_EQ(OSTReachability::statusForFlags(*OSTReachability::flagsForNetworkState(R::Site, T::Ethernet, false)), 1);
    EXPECT_EQ(OSTReachability::flagsForNetworkState(R::Online, T::Ethernet, false), reachable);
    EXPECT_EQ(OSTReachability::flagsForNetworkState(R::Online, T::Cellular, false), reachable | wwan);
    // Cellular is reported as Wi-Fi unless the connection needs the user; a captive portal does.
    EXPECT_EQ(OSTReachability::statusForFlags(*OSTReachability::flagsForNetworkState(R::Online, T::Cellular, false)), 3);
    EXPECT_EQ(OSTReachability::statusForFlags(*OSTReachability::flagsForNetworkState(R::Online, T::Cellular, true)), 2);
    EXPECT_EQ(OSTReachability::statusForFlags(*OSTReachability::flagsForNetworkState(R::Online, T::WiFi, true)), 0);
}

TEST(Reachability, WithoutANetworkInformationBackendTheStatusIsUnknown)
{
    OSTReachability::load();
    if (QNetworkInformation::instance())
        GTEST_SKIP() << "this machine has a network information backend";
    EXPECT_EQ(OSTReachability::status(), OSTReachabilityStatusUnknown);
    EXPECT_EQ(OSTReachability::flags(), std::nullopt);
}

TEST(Reachability, ChangesArePostedOnTheMainThreadOncePerChange)
{
    OSTReachability::load();
    if (QNetworkInformation::instance())
        GTEST_SKIP() << "a real backend would report changes of its own";
    int posts = 0;
    bool onMainThread = true;
    bool bare = true;
    const OSTObserverToken token = OSTNotificationCenter::defaultCenter().addObserver(
        OSTReachabilityDidChangeNotification, [&](const OSTNotification &notification) {
            ++posts;
            onMainThread = onMainThread && QThread::currentThread() == QCoreApplication::instance()->thread();
            bare = bare && notification.object == nullptr && notification.userInfo.isEmpty();
        });

    std::thread worker([] {
        OSTReachability::updateFlags(OSTReachabilityFlagReachable);
        OSTReachability::updateFlags(OSTReachabilityFlagReachable); // no change
        OSTReachability::updateFlags(OSTReachabilityFlagReachable | OSTReachabilityFlagConnectionRequired
                                     | OSTReachabilityFlagIsWWAN);
    });
    worker.join();
    EXPECT_EQ(posts, 0); // posted asynchronously
    EXPECT_EQ(OSTReachability::status(), OSTReachabilityStatusReachableViaWWAN);
    ASSERT_TRUE(test::waitUntil([&] { return posts == 2; }));

    OSTReachability::updateFlags(0);
    ASSERT_TRUE(test::waitUntil([&] { return posts == 3; }));
    EXPECT_EQ(OSTReachability::status(), OSTReachabilityStatusNotReachable);
    EXPECT_TRUE(onMainThread);
    EXPECT_TRUE(bare);
    OSTNotificationCenter::defaultCenter().removeObserver(token);
}
