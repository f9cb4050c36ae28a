// Recovery and robustness of the launch: one launch per process, resends when the network was
// fine but the service was not, and hosts that do not follow the usual start-up order.

#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "network/OSTReachability.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <optional>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class LaunchRecovery : public ::testing::Test {
protected:
    void SetUp() override { OSTApplication::setLifecycleSource(OSTLifecycleSource::Host); }

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

    // Returns the launch blocks' verdict.
    bool finishLaunchingAndWait()
    {
        std::optional<bool> success;
        OSTServiceManager::sharedManager().executeAfterLaunch([&](bool result) { success = result; });
        Ostrel::applicationDidFinishLaunching();
        EXPECT_TRUE(test::waitUntil([&] { return success.has_value(); }));
        return success.value_or(false);
    }

    // Starts the SDK while nothing listens on the service's port; returns that port.
    quint16 launchWithTheServiceDown(std::uint32_t reachabilityFlags)
    {
        startService();
        const quint16 port = server.port();
        server.stop();
        setReachability(reachabilityFlags);
        Ostrel::start();
        EXPECT_TRUE(finishLaunchingAndWait()) << "a launch that failed for the network still releases the waiting work";
        return port;
    }

    QList<test::OSTRecordedRequest> launches() const { return server.recordedRequests(u"launch_v3"_s); }
    size_t attempts() const { return events.statistics(u"launch"_s).size(); }
    bool waitForAttempts(size_t count) const
    {
        return test::waitUntil([&] { return attempts() >= count; });
    }

    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    test::OSTEventRecorder events;
};

} // namespace

TEST_F(LaunchRecovery, OneLaunchPerProcessWhateverTheHostCalls)
{
    startService();
    Ostrel::startWithToken(u"first-token"_s);
    Ostrel::startWithToken(u"second-token"_s);
    finishLaunchingAndWait();
    Ostrel::startWithToken(u"third-token"_s);
    Ostrel::start();
    Ostrel::applicationDidFinishLaunching();
    QCoreApplication::processEvents();

    ASSERT_EQ(launches().size(), 1);
    const QVariantMap parameters = launches().first().parameters;
    EXPECT_EQ(parameters.value(u"token"_s), u"second-token"_s) << "the launch carries the token in force";
    EXPECT_EQ(parameters.value(u"cached_versions"_s), QVariantList()) << "an array, empty for now";
    EXPECT_EQ(events.parametersOf(OSTSessionStartedEvent).size(), 1u);
    EXPECT_EQ(OSTServiceManager::sharedManager().token(), u"test-token"_s);
}

TEST_F(LaunchRecovery, ALaunchRefusedByTheServiceIsResentOnATimerOnceItIsBack)
{
    test::ManualClockScope time;
    const quint16 port = launchWithTheServiceDown(OSTReachabilityFlagReachable);
    ASSERT_EQ(attempts(), 1u);
    EXPECT_EQ(events.statistics(u"launch"_s).front().value(u"type"_s), u"failure"_s) << "a refused connection";

    // The first wait is 5 s spread by ±20 %: nothing before 4 s, a retry by 6 s.
    time.advance(3.9);
    EXPECT_EQ(attempts(), 1u);
    time.advance(2.2);
    ASSERT_TRUE(waitForAttempts(2)) << "the retry needs no notification from anybody";

    // The second wait doubles: nothing within 8 s of the retry.
    ASSERT_TRUE(server.start({.extraArguments = {u"--port"_s, QString::number(port)}}));
    time.advance(7.9);
    EXPECT_EQ(attempts(), 2u);
    EXPECT_TRUE(launches().isEmpty());
    time.advance(4.2);
    ASSERT_TRUE(test::waitUntil([&] { return launches().size() == 1; }));
    EXPECT_EQ(launches().first().parameters.value(u"ost_resend"_s), true);
    EXPECT_EQ(launches().first().parameters.value(u"launch_type"_s), u"install"_s);
    ASSERT_TRUE(waitForAttempts(3));
    EXPECT_EQ(events.statistics(u"launch"_s).back().value(u"type"_s), u"success"_s);
    EXPECT_EQ(events.parametersOf(OSTSessionStartedEvent).size(), 2u)
        << "the launch and its first resend report a session; the retries in between do not";

    // Once a request got through, nothing more is sent.
    time.advance(600);
    EXPECT_EQ(launches().size(), 1);
}

TEST_F(LaunchRecovery, WithoutANetworkOnlyReachabilityTriggersTheResend)
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

TEST_F(LaunchRecovery, TheInitialisedStateMayBeReadFromAnyThreadWhileTheTokenChanges)
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

TEST_F(LaunchRecovery, QCoreApplicationHostsGetTheirLaunchWhenEverTheyStart)
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
