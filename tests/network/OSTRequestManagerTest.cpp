#include "OSTNetworkTestSupport.h"

#include "core/OSTLogging.h"
#include "network/OSTRequestManager.h"
#include "network/OSTURLErrorTable.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <array>
#include <thread>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QVariantMap sampleExperience = test::jsonObject(R"({
    "flow": {"signup": {"name": "Sign up", "steps": ["Welcome", "Details"]}},
    "splash": {"Welcome": {"labels": {"title": {"text": "Hi"}}}, "Details": {"inputs": {}}},
    "metadata": {"splash_screen": {"Welcome": {"experience_name": "Welcome", "json_version": "w1"}}}})");

class RequestManagerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        server.writeExperience(sampleExperience);
    }

    void startServer(const test::OSTDevServerProcess::Options &options = {})
    {
        ASSERT_TRUE(server.start(options));
        server.installMainBundle(folder.filePath(u"bundle"_s));
    }

    OSTRequestManager &manager() { return OSTRequestManager::sharedManager(); }

    QTemporaryDir folder;
    test::OSTDevServerProcess server;
};

} // namespace

TEST_F(RequestManagerTest, RoundTripDeliversTheDecryptedAnswerOnTheDataSessionQueue)
{
    startServer();
    const QVariantMap parameters{{u"launch_type"_s, u"install"_s},
                                 {u"cached_versions"_s, QVariantList{u"w1"_s}},
                                 {u"device"_s, QVariantMap{{u"model"_s, u"desktop"_s}, {u"density"_s, 2}}}};
    test::RequestOutcome outcome;
    manager().apiRequestWithEndpoint(u"launch_v3"_s, parameters, outcome.completion());
    ASSERT_TRUE(outcome.wait());

    ASSERT_FALSE(outcome.error) << outcome.error->message.toStdString();
    ASSERT_TRUE(outcome.response);
    EXPECT_EQ(outcome.threadName, manager().dataSession().delegateQueue().name());
    EXPECT_NE(outcome.thread, QCoreApplication::instance()->thread());

    const QVariantMap flows = outcome.response->value(u"flow"_s).toMap();
    EXPECT_EQ(flows.value(u"signup"_s).toMap().value(u"steps"_s).toList(), (QVariantList{u"Welcome"_s, u"Details"_s}));
    // The cached version travels without its JSON (the service's rule, tested on its own); the
    // other screen carries it as text.
    const QVariantMap screens = outcome.response->value(u"splash_screen"_s).toMap();
    EXPECT_EQ(screens.value(u"Details"_s).toMap().value(u"json_data"_s).toString(), u"{\"inputs\":{}}"_s);

    const QList<test::OSTRecordedRequest> recorded = server.recordedRequests(u"launch_v3"_s);
    ASSERT_EQ(recorded.size(), 1);
    EXPECT_EQ(recorded.first().parameters, parameters);

    // A custom time-out answers the same way, on a session of its own.
    test::RequestOutcome custom;
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {{u"ost_resend"_s, true}}, 30.0, custom.completion());
    ASSERT_TRUE(custom.wait());
    ASSERT_TRUE(custom.response);
    EXPECT_TRUE(custom.response->contains(u"flow"_s));
}

TEST_F(RequestManagerTest, HTTPStatusesBecomeErrorsWithTheStatusAsCodeAndA500IsReportedOnce)
{
    startServer();
    test::OSTEventRecorder events;

    for (const int status : {401, 204, 500, 404}) {
        ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"launch_v3"_s}, {u"status"_s, status}, {u"times"_s, 1}}));
        test::RequestOutcome outcome;
        manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcome.completion());
        ASSERT_TRUE(outcome.wait());
        EXPECT_FALSE(outcome.response);
        ASSERT_TRUE(outcome.error);
        EXPECT_TRUE(outcome.error->is(NSURLErrorDomain, status)) << status << " gave " << outcome.error->code;
    }
    const auto errors = events.statistics(u"internal_server_error"_s);
    ASSERT_EQ(errors.size(), 1u);
    const QUrl url(errors.front().value(u"url"_s).toString());
    EXPECT_EQ(url.path(), u"/launch_v3"_s);
    EXPECT_EQ(url.port(), server.port());
}

TEST_F(RequestManagerTest, HeldRequestsTimeOutAfterFiveSecondsOrTheirOwnTimeOutOnASessionOfTheirOwn)
{
    test::ManualClockScope clock;
    startServer({.faults = {u"*:delay=600"_s}});
    std::array<test::RequestOutcome, 3> outcomes; // the default 5 s, 3 s, 30 s
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcomes[0].completion());
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, 3.0, outcomes[1].completion());
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, 30.0, outcomes[2].completion());
    EXPECT_EQ(manager().customSessionCount(), 2);
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests().size() == 3 && clock.clock().pendingTimerCount() == 3; }));

    clock.advance(3.0);
    ASSERT_TRUE(outcomes[1].wait());
    EXPECT_EQ(outcomes[1].errorCode(), OSTURLErrorTimedOut);
    EXPECT_FALSE(outcomes[0].done);
    EXPECT_EQ(manager().customSessionCount(), 1);

    clock.advance(1.9);
    EXPECT_FALSE(test::waitUntil([&] { return outcomes[0].done.load(); }, 200));
    clock.advance(0.1);
    ASSERT_TRUE(outcomes[0].wait());
    EXPECT_FALSE(outcomes[0].response);
    ASSERT_TRUE(outcomes[0].error);
    EXPECT_TRUE(outcomes[0].error->is(NSURLErrorDomain, OSTURLErrorTimedOut));
    EXPECT_EQ(outcomes[0].threadName, manager().dataSession().delegateQueue().name());
    EXPECT_FALSE(outcomes[2].done);

    clock.advance(25.0);
    ASSERT_TRUE(outcomes[2].wait());
    EXPECT_EQ(outcomes[2].errorCode(), OSTURLErrorTimedOut);
    EXPECT_EQ(manager().customSessionCount(), 0);

    // Each custom request ran on a queue of its own, which is gone once it completed.
    EXPECT_NE(outcomes[1].threadName, outcomes[2].threadName);
    EXPECT_TRUE(outcomes[1].threadName.startsWith(u"com.ostrelhq.requestManager.session."_s));
    EXPECT_TRUE(test::waitUntil([&] { return outcomes[1].thread.isNull() && outcomes[2].thread.isNull(); }));
    EXPECT_FALSE(outcomes[0].thread.isNull());
}

TEST_F(RequestManagerTest, BadAnswersReachTheCallerAsErrorsWithADebugLine)
{
    startServer();
    OSTLogging::setLoggingLevel(4);
    struct Case {
        QVariantMap fault;
        int expectedCode;
        QString expectedLine;
    };
    const QString parseLine = u"Ostrel Debug: Failed to parse response for endpoint: launch_v3"_s;
    const QString failureLine = u"Ostrel Debug: API request to endpoint \"launch_v3\" failed with error:"_s;
    const std::vector<Case> cases = {
        {{{u"body"_s, u"garbage"_s}}, OSTURLErrorCannotDecodeContentData, parseLine},
        {{{u"body"_s, u"bad-padding"_s}}, OSTURLErrorCannotDecodeContentData, parseLine},
        {{{u"body"_s, u"not-json"_s}}, OSTURLErrorCannotParseResponse, parseLine},
        {{{u"body"_s, u"array"_s}}, OSTURLErrorCannotParseResponse, parseLine},
        {{{u"body"_s, u"empty"_s}}, OSTURLErrorZeroByteResource, parseLine},
        {{{u"body"_s, u"oversized"_s}}, OSTURLErrorDataLengthExceedsMaximum, failureLine},
        {{{u"connection"_s, u"truncate"_s}}, OSTURLErrorNetworkConnectionLost, failureLine},
        {{{u"connection"_s, u"drop"_s}}, OSTURLErrorNetworkConnectionLost, failureLine},
    };
    for (const Case &badAnswer : cases) {
        QVariantMap fault = badAnswer.fault;
        fault.insert(u"endpoint"_s, u"launch_v3"_s);
        // Not limited to one answer: the transport may retry a request whose connection dropped.
        ASSERT_TRUE(server.setFault(fault));
        test::RequestOutcome outcome;
        const QString log = test::captureStandardError([&] {
            manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcome.completion());
            ASSERT_TRUE(outcome.wait());
        });
        const std::string name = QJsonDocument::fromVariant(badAnswer.fault).toJson().toStdString();
        EXPECT_FALSE(outcome.response) << name;
        ASSERT_TRUE(outcome.error) << name;
        EXPECT_EQ(outcome.error->domain, NSURLErrorDomain) << name;
        EXPECT_EQ(outcome.error->code, badAnswer.expectedCode) << name;
        EXPECT_TRUE(log.contains(badAnswer.expectedLine)) << name << log.toStdString();
        ASSERT_TRUE(server.clearFaults());
    }
    // The service and the session still work.
    test::RequestOutcome outcome;
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcome.completion());
    ASSERT_TRUE(outcome.wait());
    EXPECT_TRUE(outcome.response);
}

TEST_F(RequestManagerTest, AnHTTPSServiceIsReachedWithItsCertificateVerified)
{
    startServer({.tls = true});
    ASSERT_EQ(server.serviceURL().scheme(), u"https"_s);
    test::RequestOutcome outcome;
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {{u"secure"_s, true}}, outcome.completion());
    ASSERT_TRUE(outcome.wait());
    ASSERT_FALSE(outcome.error) << outcome.error->message.toStdString();
    EXPECT_TRUE(outcome.response->contains(u"splash_screen"_s));
    EXPECT_EQ(server.recordedRequests(u"launch_v3"_s).size(), 1);
}

TEST_F(RequestManagerTest, AnHTTPSServiceWithAnUntrustedCertificateIsRefused)
{
    ASSERT_TRUE(server.start({.tls = true}));
    const test::TestCertificate other = test::makeTestCertificate(folder.path(), test::CertificateValidity::Current);
    OSTBundle::setMainBundlePath(test::writeBundle(folder.filePath(u"bundle"_s),
                                                   {{u"OstrelServiceURL"_s, server.serviceURL().toString()},
                                                    {u"OstrelServiceCertificate"_s, other.base64()}}));
    test::RequestOutcome outcome;
    manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcome.completion());
    ASSERT_TRUE(outcome.wait());
    EXPECT_FALSE(outcome.response);
    EXPECT_EQ(outcome.errorCode(), OSTURLErrorServerCertificateUntrusted);
    EXPECT_TRUE(server.recordedRequests().isEmpty());
}

TEST_F(RequestManagerTest, ImagesDownloadAtScaleTwoAndReportTheirTiming)
{
    test::ManualClockScope clock;
    server.writeImage(u"logo.png"_s, test::pngOfColor(Qt::red));
    startServer();
    test::OSTEventRecorder events;
    const auto download = [&](const QString &name, const std::function<void()> &whileWaiting = {}) {
        const test::ImageDownload result =
            test::downloadImage(server.serviceURL().resolved(QUrl(u"/images/"_s + name)), whileWaiting);
        return std::pair{result.image, result.error};
    };

    const auto [image, noError] = download(u"logo.png"_s);
    EXPECT_FALSE(noError);
    EXPECT_EQ(image.size(), QSize(4, 4));
    EXPECT_EQ(image.devicePixelRatio(), 2.0);
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::red));

    const auto [missing, notFound] = download(u"missing.png"_s);
    EXPECT_TRUE(missing.isNull());
    ASSERT_TRUE(notFound);
    EXPECT_TRUE(notFound->is(NSURLErrorDomain, 404));

    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"images"_s}, {u"delay"_s, 600}}));
    const auto [late, timedOut] = download(u"logo.png"_s, [&] {
        ASSERT_TRUE(test::waitUntil([&] { return clock.clock().pendingTimerCount() == 1; }));
        clock.advance(30.0);
    });
    EXPECT_TRUE(late.isNull());
    ASSERT_TRUE(timedOut);
    EXPECT_TRUE(timedOut->is(NSURLErrorDomain, OSTURLErrorTimedOut));

    const auto reports = events.statistics(u"image_download"_s);
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_EQ(reports[0].value(u"type"_s), u"success"_s);
    EXPECT_EQ(QUrl(reports[0].value(u"image_url"_s).toString()).fileName(), u"logo.png"_s);
    EXPECT_EQ(reports[1].value(u"type"_s), u"failure"_s);
    EXPECT_EQ(reports[2].value(u"type"_s), u"timeout"_s);
    EXPECT_DOUBLE_EQ(reports[2].value(u"timing"_s).toDouble(), 30.0);
}

TEST_F(RequestManagerTest, ACancelledRequestReportsCancelled)
{
    startServer({.faults = {u"launch_v3:delay=600"_s}});
    test::RequestOutcome outcome;
    const OSTRequestManager::Task task = manager().apiRequestWithEndpoint(u"launch_v3"_s, {}, outcome.completion());
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests().size() == 1; }));
    task->cancel();
    ASSERT_TRUE(outcome.wait());
    EXPECT_EQ(outcome.errorCode(), OSTURLErrorCancelled);
    EXPECT_EQ(task->state(), OSTURLSessionTask::State::Completed);
}

TEST_F(RequestManagerTest, ConcurrentStringRequestsCompleteOneAtATimeOnTheDataSessionQueue)
{
    startServer();
    constexpr int threads = 4;
    constexpr int perThread = 5;
    std::atomic<int> running{0};
    std::atomic<bool> overlapped{false};
    std::atomic<int> completed{0};
    QMutex mutex;
    QSet<QString> deliveringQueues;
    std::vector<std::thread> senders;
    for (int sender = 0; sender < threads; ++sender) {
        senders.emplace_back([&, sender] {
            for (int index = 0; index < perThread; ++index) {
                const QVariantMap event{{u"ost_event_id"_s, u"E%1-%2"_s.arg(sender).arg(index)}};
                manager().apiStringRequestWithEndpoint(u"event"_s, event,
                                                       [&](const std::optional<QString> &text, const auto &) {
                    if (running.fetch_add(1) != 0)
                        overlapped = true;
                    {
                        QMutexLocker locker(&mutex);
                        deliveringQueues.insert(QThread::currentThread()->objectName());
                    }
                    if (text == u"OK"_s)
                        ++completed;
                    running.fetch_sub(1);
                });
            }
        });
    }
    for (std::thread &sender : senders)
        sender.join();
    ASSERT_TRUE(test::waitUntil([&] { return completed.load() == threads * perThread; }, 30000));
    EXPECT_FALSE(overlapped);
    EXPECT_EQ(deliveringQueues, QSet<QString>{manager().dataSession().delegateQueue().name()});
    EXPECT_EQ(server.storedEvents().size(), threads * perThread);
}

TEST(RequestManager, ARefusedPortGivesCannotConnectToHost)
{
    QTemporaryDir folder;
    const test::TestCertificate certificate = test::makeTestCertificate(folder.path(), test::CertificateValidity::Current);
    OSTBundle::setMainBundlePath(test::writeBundle(
        folder.filePath(u"bundle"_s),
        {{u"OstrelServiceURL"_s, u"http://127.0.0.1:%1"_s.arg(test::closedLoopbackPort())},
         {u"OstrelServiceCertificate"_s, certificate.base64()}}));
    test::RequestOutcome outcome;
    OSTRequestManager::sharedManager().apiRequestWithEndpoint(u"launch_v3"_s, {}, 3.0, outcome.completion());
    ASSERT_TRUE(outcome.wait());
    EXPECT_FALSE(outcome.response);
    ASSERT_TRUE(outcome.error);
    EXPECT_TRUE(outcome.error->is(NSURLErrorDomain, OSTURLErrorCannotConnectToHost));
}

TEST(RequestManager, WithoutAServiceURLRequestsFailAtOnce)
{
    QTemporaryDir folder;
    OSTBundle::setMainBundlePath(test::writeBundle(folder.path(), {{u"OstrelServiceURL"_s, u"ftp://example.test"_s}}));
    OSTLogging::setLoggingLevel(1);
    test::RequestOutcome outcome;
    const QString log = test::captureStandardError([&] {
        OSTRequestManager::sharedManager().apiStringRequestWithEndpoint(u"event"_s, {}, outcome.stringCompletion());
        ASSERT_TRUE(outcome.wait());
    });
    EXPECT_FALSE(outcome.text);
    EXPECT_EQ(outcome.errorCode(), OSTURLErrorBadURL);
    EXPECT_TRUE(log.contains(u"Ostrel Error: The service URL \"ftp://example.test\" is not an http or https URL."_s))
        << log.toStdString();
}
