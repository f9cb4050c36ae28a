// The launch sequence end to end: the SDK is started through the public facade and talks to
// ostrel-devserver over loopback; the test reads what the service recorded.

#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "events/OSTInternalEvent.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Launch blocks and what they were called with.
struct LaunchBlockRecorder {
    std::vector<bool> calls;
    OSTServiceManager::LaunchBlock block() { return [this](bool success) { calls.push_back(success); }; }
};

// A first run of the same installation in another process: the parent passes its data folder,
// so the child writes the same settings store.
const bool firstRunRegistered = test::OSTChildProcess::registerMode(u"first-run"_s, [](const QStringList &arguments) {
    qputenv("XDG_DATA_HOME", arguments.at(arguments.size() - 2).toLocal8Bit());
    OSTBundle::setMainBundlePath(arguments.last());
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    bool finished = false;
    Ostrel::executeAfterLaunch([&](bool) { finished = true; });
    OSTApplication::sharedApplication().finishLaunching();
    return test::waitUntil([&] { return finished; }, 30000) ? 0 : 1;
});

class LaunchSequence : public ::testing::Test {
protected:
    void SetUp() override { OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host); }

    // Starts the service (with `faults`) and makes the main bundle name it and a token.
    void startService(const QStringList &faults = {})
    {
        ASSERT_TRUE(server.start({.faults = faults}));
        server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    }

    // did-finish-launching, then waits until the launch has finished; returns the launch blocks'
    // verdict.
    bool finishLaunchingAndWait()
    {
        std::optional<bool> success;
        manager().executeAfterLaunch([&](bool result) { success = result; });
        application().finishLaunching();
        EXPECT_TRUE(test::waitUntil([&] { return success.has_value(); }));
        return success.value_or(false);
    }

    QList<test::OSTRecordedRequest> launches() const { return server.recordedRequests(u"launch_v3"_s); }
    bool waitForLaunchCount(int count) const { return test::waitUntil([&] { return launches().size() >= count; }); }
    // The session starts and launch timings among the events the SDK hands over.
    std::vector<QVariantMap> sessionStarts() const { return events.parametersOf(OSTSessionStartedEvent); }
    std::vector<QVariantMap> launchTimings() const { return events.statistics(u"launch"_s); }

    static OSTServiceManager &manager() { return OSTServiceManager::sharedManager(); }
    static OSTApplication &application() { return OSTApplication::sharedApplication(); }

    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    test::OSTEventRecorder events;
};

} // namespace

TEST_F(LaunchSequence, FirstLaunchIsAnInstallAndReleasesTheWaitingWork)
{
    startService();
    Ostrel::start();
    LaunchBlockRecorder queued;
    manager().executeAfterLaunch(queued.block());
    manager().executeAfterLaunch(queued.block());
    EXPECT_TRUE(launches().isEmpty()) << "nothing is sent before the application finishes launching";

    EXPECT_TRUE(finishLaunchingAndWait());
    EXPECT_EQ(queued.calls, (std::vector<bool>{true, true}));

    ASSERT_EQ(launches().size(), 1);
    const QVariantMap parameters = launches().first().parameters;
    EXPECT_EQ(parameters.value(u"launch_type"_s), u"install"_s);
    EXPECT_EQ(parameters.value(u"token"_s), u"test-token"_s);
    EXPECT_EQ(parameters.value(u"ost_resend"_s), false);
    EXPECT_EQ(parameters.value(u"logged_in_lifetime"_s), false);
    EXPECT_EQ(parameters.value(u"requires_login"_s), true) << "required until the host says otherwise";
    EXPECT_EQ(parameters.value(u"user_id"_s), u""_s);
    EXPECT_EQ(parameters.value(u"advertiser_id"_s), u""_s);

    LaunchBlockRecorder late;
    manager().executeAfterLaunch(late.block());
    EXPECT_EQ(late.calls, (std::vector<bool>{true})) << "a block added after the launch runs at once";
    EXPECT_EQ(queued.calls.size(), 2u) << "queued blocks run only once";

    ASSERT_EQ(sessionStarts().size(), 1u);
    EXPECT_EQ(sessionStarts().front().value(u"session_launch"_s), true);
    ASSERT_EQ(launchTimings().size(), 1u);
    EXPECT_EQ(launchTimings().front().value(u"type"_s), u"success"_s);
    EXPECT_TRUE(manager().launchedLifetime());
}

TEST_F(LaunchSequence, TheSecondRunOfAnInstallationIsLoggedOut)
{
    startService();
    QProcess firstRun;
    firstRun.setProcessChannelMode(QProcess::ForwardedChannels);
    firstRun.start(QCoreApplication::applicationFilePath(), {test::OSTChildProcess::argumentFor(u"first-run"_s),
                                                             qEnvironmentVariable("XDG_DATA_HOME"), bundle.path()});
    ASSERT_TRUE(firstRun.waitForFinished(60000));
    ASSERT_EQ(firstRun.exitCode(), 0);
    ASSERT_EQ(launches().size(), 1);
    EXPECT_EQ(launches().first().parameters.value(u"launch_type"_s), u"install"_s);

    Ostrel::start();
    EXPECT_TRUE(finishLaunchingAndWait());
    ASSERT_EQ(launches().size(), 2);
    EXPECT_EQ(launches().last().parameters.value(u"launch_type"_s), u"logged_out"_s);
}

TEST_F(LaunchSequence, ARefusedTokenAbortsTheLaunchAndLeavesTheSdkUnstarted)
{
    startService({u"launch_v3:status=401"_s});
    Ostrel::start();
    LaunchBlockRecorder queued;
    manager().executeAfterLaunch(queued.block());
    const QString log = test::captureStandardError([&] { EXPECT_FALSE(finishLaunchingAndWait()); });

    EXPECT_TRUE(log.contains(u"Ostrel Error: Invalid token. Aborting launch sequence."_s)) << log.toStdString();
    EXPECT_EQ(queued.calls, (std::vector<bool>{false}));
    EXPECT_FALSE(manager().isInitialized());
    EXPECT_FALSE(manager().token());
    LaunchBlockRecorder late;
    manager().executeAfterLaunch(late.block());
    EXPECT_EQ(late.calls, (std::vector<bool>{false}));
    ASSERT_EQ(launchTimings().size(), 1u);
    EXPECT_EQ(launchTimings().front().value(u"type"_s), u"failure"_s);

    // A 401 is not a network failure: reachability coming back sends nothing.
    OSTNotificationCenter::defaultCenter().post(OSTReachabilityDidChangeNotification);
    QCoreApplication::processEvents();
    EXPECT_EQ(launches().size(), 1);
}

TEST_F(LaunchSequence, SessionsFollowTheTimeSpentInTheBackground)
{
    test::ManualClockScope time;
    startService();
    Ostrel::start();
    ASSERT_TRUE(finishLaunchingAndWait());
    application().becomeActive();
    const size_t sessionsAfterLaunch = sessionStarts().size();

    application().enterBackground();
    time.advance(899);
    application().becomeActive();
    EXPECT_EQ(sessionStarts().size(), sessionsAfterLaunch) << "899 s continue the session";

    application().enterBackground();
    time.advance(900);
    application().becomeActive();
    ASSERT_EQ(sessionStarts().size(), sessionsAfterLaunch + 1) << "900 s start a new session";
    const QVariantMap foregroundSession = sessionStarts().back();
    EXPECT_EQ(foregroundSession.value(u"session_launch"_s), false);
    EXPECT_EQ(foregroundSession.value(u"session_foreground"_s), 1);
    EXPECT_EQ(foregroundSession.value(u"ost_time_since_last_session"_s), u"900.000000"_s);
    QCoreApplication::processEvents();
    EXPECT_EQ(launches().size(), 1) << "a new session alone sends no launch";

    application().enterBackground();
    time.advance(7200.5);
    application().becomeActive();
    ASSERT_TRUE(waitForLaunchCount(2));
    EXPECT_EQ(launches().last().parameters.value(u"launch_type"_s), u"launch"_s);
    const auto sessions = sessionStarts();
    ASSERT_GE(sessions.size(), sessionsAfterLaunch + 2);
    EXPECT_EQ(sessions.at(sessionsAfterLaunch + 1).value(u"session_launch"_s), true);
}

TEST_F(LaunchSequence, ATimedOutLaunchIsResentOnceWhenTheNetworkComesBack)
{
    test::ManualClockScope time;
    // The service holds both the first send and the resend long enough to time out.
    startService({u"launch_v3:delay=120,times=2"_s});
    Ostrel::start();
    std::optional<bool> success;
    manager().executeAfterLaunch([&](bool result) { success = result; });
    application().finishLaunching();
    ASSERT_TRUE(waitForLaunchCount(1));
    time.advance(3.0);
    ASSERT_TRUE(test::waitUntil([&] { return success.has_value(); }));
    EXPECT_TRUE(*success) << "a launch that failed for the network still releases the waiting work";
    ASSERT_EQ(launchTimings().size(), 1u);
    EXPECT_EQ(launchTimings().front().value(u"type"_s), u"timeout"_s);

    OSTNotificationCenter::defaultCenter().post(OSTReachabilityDidChangeNotification);
    ASSERT_TRUE(waitForLaunchCount(2));
    const QVariantMap resend = launches().last().parameters;
    EXPECT_EQ(resend.value(u"ost_resend"_s), true);
    EXPECT_EQ(resend.value(u"launch_type"_s), u"install"_s);

    // The resend waits 30 seconds, not 3.
    time.advance(29.0);
    QCoreApplication::processEvents();
    EXPECT_EQ(launchTimings().size(), 1u);
    time.advance(1.0);
    ASSERT_TRUE(test::waitUntil([&] { return launchTimings().size() == 2; }));
    EXPECT_EQ(launchTimings().back().value(u"type"_s), u"timeout"_s);
}

TEST_F(LaunchSequence, BadLaunchResponsesFallBackToTheDefaultSessionDelays)
{
    startService();
    server.writeLaunchConfiguration({{u"session_delay"_s, u"sixty"_s}, {u"session_delay_cap"_s, QVariantList{1}}});
    Ostrel::start();
    EXPECT_TRUE(finishLaunchingAndWait());
    EXPECT_EQ(manager().sessionDelay(), 900.0);
    EXPECT_EQ(manager().launchDelay(), 7200.0);

    server.writeLaunchConfiguration({{u"session_delay"_s, u"60"_s}, {u"session_delay_cap"_s, 120}});
    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"launch_v3"_s}, {u"body"_s, u"array"_s}, {u"times"_s, 1}}));
    manager().sessionLaunch();
    ASSERT_TRUE(waitForLaunchCount(2));
    ASSERT_TRUE(test::waitUntil([&] { return launchTimings().size() == 2; }));
    EXPECT_EQ(launchTimings().back().value(u"type"_s), u"failure"_s);
    EXPECT_EQ(manager().sessionDelay(), 900.0) << "an answer that is not a dictionary changes nothing";

    manager().sessionLaunch();
    ASSERT_TRUE(test::waitUntil([&] { return launchTimings().size() == 3; }));
    EXPECT_EQ(manager().sessionDelay(), 60.0) << "numeric strings are accepted";
    EXPECT_EQ(manager().launchDelay(), 120.0);
}
