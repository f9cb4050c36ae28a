// The launch sequence end to end: the SDK is started through the public facade and talks to
// ostrel-devserver over loopback; the test reads what the service recorded. Also its recovery:
// one launch per process, resends when the network was fine but the service was not, and hosts
// that do not follow the usual start-up order.

#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "events/OSTInternalEvent.h"
#include "network/OSTReachability.h"
#include "platform/OSTApplication.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Launch blocks and what they were called with.
struct LaunchBlockRecorder {
    std::vector<bool> calls;
    OSTServiceManager::LaunchBlock block() { return [this](bool success) { calls.push_back(success); }; }
};

// A first run of the same installation in another process, writing the same settings store.
const bool firstRunRegistered = test::OSTChildProcess::registerMode(u"first-run"_s, [](const QStringList &arguments) {
    test::OSTChildProcess::adoptParentData(arguments);
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    return test::launchAndWait() ? 0 : 1;
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

    // Pins the reachability reading, after the backend (if any) has given its own.
    static void setReachability(std::optional<std::uint32_t> flags)
    {
        OSTReachability::load();
        QCoreApplication::processEvents();
        OSTReachability::updateFlags(flags);
        QCoreApplication::processEvents();
    }

    // Starts the SDK while nothing listens on the service's port; returns that port.
    quint16 launchWithTheServiceDown(std::uint32_t reachabilityFlags)
    {
        startService();
        const quint16 port = server.port();
        server.stop();
        setReachability(reachabilityFlags);
        Ostrel::start();
        EXPECT_TRUE(test::launchAndWait()) << "a launch that failed for the network still releases the waiting work";
        return port;
    }

    QList<test::OSTRecordedRequest> launches() const { return server.recordedRequests(u"launch_v3"_s); }
    bool waitForLaunchCount(int count) const { return test::waitUntil([&] { return launches().size() >= count; }); }
    // The session starts and launch timings (one per attempt) among the events the SDK hands over.
    std::vector<QVariantMap> sessionStarts() const { return events.parametersOf(OSTSessionStartedEvent); }
    std::vector<QVariantMap> launchTimings() const { return events.statistics(u"launch"_s); }
    bool waitForAttempts(size_t count) const
    {
        return test::waitUntil([&] { return launchTimings().size() >= count; });
    }

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

    EXPECT_TRUE(test::launchAndWait());
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
    ASSERT_EQ(test::OSTChildProcess::runSharingData(u"first-run"_s, bundle.path()), 0);
    ASSERT_EQ(launches().size(), 1);
    EXPECT_EQ(launches().first().parameters.value(u"launch_type"_s), u"install"_s);

    Ostrel::start();
    EXPECT_TRUE(test::launchAndWait());
    ASSERT_EQ(launches().size(), 2);
    EXPECT_EQ(launches().last().parameters.value(u"launch_type"_s), u"logged_out"_s);
}

TEST_F(LaunchSequence, ARefusedTokenAbortsTheLaunchAndLeavesTheSdkUnstarted)
{
    startService({u"launch_v3:status=401"_s});
    Ostrel::start();
    LaunchBlockRecorder queued;
    manager().executeAfterLaunch(queued.block());
    const QString log = test::captureStandardError([&] { EXPECT_FALSE(test::launchAndWait()); });

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
    ASSERT_TRUE(test::launchAndWait());
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
    EXPECT_TRUE(test::launchAndWait());
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

TEST_F(LaunchSequence, OneLaunchPerProcessWhateverTheHostCalls)
{
    startService();
    Ostrel::startWithToken(u"first-token"_s);
    Ostrel::startWithToken(u"second-token"_s);
    test::launchAndWait();
    Ostrel::startWithToken(u"third-token"_s);
    Ostrel::start();
    Ostrel::applicationDidFinishLaunching();
    QCoreApplication::processEvents();

    ASSERT_EQ(launches().size(), 1);
    const QVariantMap parameters = launches().first().parameters;
    EXPECT_EQ(parameters.value(u"token"_s), u"second-token"_s) << "the launch carries the token in force";
    EXPECT_EQ(parameters.value(u"cached_versions"_s), QVariantList()) << "an array, empty for now";
    EXPECT_EQ(sessionStarts().size(), 1u);
    EXPECT_EQ(OSTServiceManager::sharedManager().token(), u"test-token"_s);
}

TEST_F(LaunchSequence, ALaunchRefusedByTheServiceIsResentOnATimerOnceItIsBack)
{
    test::ManualClockScope time;
    const quint16 port = launchWithTheServiceDown(OSTReachabilityFlagReachable);
    ASSERT_EQ(launchTimings().size(), 1u);
    EXPECT_EQ(launchTimings().front().value(u"type"_s), u"failure"_s) << "a refused connection";

    // The first wait is 5 s spread by ±20 %: nothing before 4 s, a retry by 6 s.
    time.advance(3.9);
    EXPECT_EQ(launchTimings().size(), 1u);
    time.advance(2.2);
    ASSERT_TRUE(waitForAttempts(2)) << "the retry needs no notification from anybody";

    // The second wait doubles: nothing within 8 s of the retry.
    ASSERT_TRUE(server.start({.extraArguments = {u"--port"_s, QString::number(port)}}));
    time.advance(7.9);
    EXPECT_EQ(launchTimings().size(), 2u);
    EXPECT_TRUE(launches().isEmpty());
    time.advance(4.2);
    ASSERT_TRUE(test::waitUntil([&] { return launches().size() == 1; }));
    EXPECT_EQ(launches().first().parameters.value(u"ost_resend"_s), true);
    EXPECT_EQ(launches().first().parameters.value(u"launch_type"_s), u"install"_s);
    ASSERT_TRUE(waitForAttempts(3));
    EXPECT_EQ(launchTimings().back().value(u"type"_s), u"success"_s);
    EXPECT_EQ(sessionStarts().size(), 2u)
        << "the launch and its first resend report a session; the retries in between do not";

    // Once a request got through, nothing more is sent.
    time.advance(600);
    EXPECT_EQ(launches().size(), 1);
}

TEST_F(LaunchSequence, WithoutANetworkOnlyReachabilityTriggersTheResend)
{
    test::ManualClockScope time;
    const quint16 port = launchWithTheServiceDown(0u); // not reachable
    ASSERT_TRUE(server.start({.extraArguments = {u"--port"_s, QString::number(port)}}));

    time.advance(600);
    EXPECT_TRUE(launches().isEmpty()) << "no timer while the network is down";

    OSTReachability::updateFlags(OSTReachabilityFlagReachable);
    ASSERT_TRUE(test::waitUntil([&] { return launches().size() == 1; }));
    EXPECT_EQ(launches().first().parameters.value(u"ost_resend"_s), true);
}

TEST_F(LaunchSequence, TheInitialisedStateMayBeReadFromAnyThreadWhileTheTokenChanges)
{
    startService();
    std::atomic<bool> stop = false;
    std::atomic<int> badReadings = 0;
    QThread *reader = QThread::create([&] {
        while (!stop) {
            const auto token = OSTServiceManager::sharedManager().token();
            if (OSTServiceManager::sharedManager().isInitialized() && token && !token->startsWith(u"token-"_s))
                ++badReadings;
        }
    });
    reader->start();
    for (int round = 0; round < 200; ++round)
        Ostrel::startWithToken(u"token-%1"_s.arg(round));
    stop = true;
    reader->wait();
    delete reader;
    EXPECT_EQ(badReadings, 0);
    EXPECT_TRUE(OSTServiceManager::sharedManager().isInitialized());
    EXPECT_EQ(OSTServiceManager::sharedManager().token(), u"token-199"_s);
}

TEST_F(LaunchSequence, QCoreApplicationHostsGetTheirLaunchWhenEverTheyStart)
{
    startService();
    for (const QString &order : {u"before"_s, u"after"_s}) {
        QProcess host;
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(QStringLiteral(OSTREL_CORE_HOST_PATH), {bundle.path(), order});
        ASSERT_TRUE(host.waitForFinished(60000)) << order.toStdString();
        const QString output = QString::fromLocal8Bit(host.readAll());
        EXPECT_EQ(host.exitCode(), 0) << order.toStdString() << ": " << output.toStdString();
        EXPECT_TRUE(output.contains(u"launch finished: success"_s)) << output.toStdString();
        EXPECT_TRUE(output.contains(u"Ostrel Info: Reachability source:"_s)) << output.toStdString();
    }
    ASSERT_EQ(launches().size(), 2) << "one launch from each host";
}
