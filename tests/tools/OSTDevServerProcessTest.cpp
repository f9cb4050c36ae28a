// ostrel-devserver as the SDK and developers meet it: a process on a loopback port.

#include "Endpoints.h"

#include "network/OSTRequestEnvelope.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSslCertificate>
#include <QSslKey>
#include <QTcpSocket>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class DevServerProcessTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
    }

    void startAndInstall(const test::OSTDevServerProcess::Options &options = {})
    {
        ASSERT_TRUE(server.start(options));
        server.installMainBundle(folder.filePath(u"bundle"_s));
    }

    std::optional<QVariantMap> request(const QString &endpoint, const QVariantMap &parameters)
    {
        return awaitAnswer<QVariantMap>([&](auto completion) {
            OSTRequestManager::sharedManager().apiRequestWithEndpoint(endpoint, parameters, completion);
        });
    }

    std::optional<QString> requestText(const QString &endpoint, const QVariantMap &parameters)
    {
        return awaitAnswer<QString>([&](auto completion) {
            OSTRequestManager::sharedManager().apiStringRequestWithEndpoint(endpoint, parameters, completion);
        });
    }

    // Sends with a completion that keeps the answer, and waits for it.
    template <typename Answer, typename Send>
    static std::optional<Answer> awaitAnswer(const Send &send)
    {
        std::atomic<bool> done{false};
        std::optional<Answer> answer;
        send([&](const std::optional<Answer> &received, const auto &) {
            answer = received;
            done = true;
        });
        EXPECT_TRUE(test::waitUntil([&] { return done.load(); }, 30000));
        return answer;
    }

    QTemporaryDir folder;
    test::OSTDevServerProcess server;
};

QByteArray envelopeText(const QJsonObject &envelope)
{
    return QJsonDocument(envelope).toJson(QJsonDocument::Compact);
}

} // namespace

TEST_F(DevServerProcessTest, PrintsItsPortURLAndCertificateAndKeepsTheIdentityAcrossRestarts)
{
    ASSERT_TRUE(server.start());
    const QString output = server.standardOutput();
    EXPECT_TRUE(output.contains(u"port: %1\n"_s.arg(server.port()))) << output.toStdString();
    EXPECT_TRUE(output.contains(u"url: http://127.0.0.1:%1\n"_s.arg(server.port())));
    EXPECT_EQ(server.serviceURL().toString(), u"http://127.0.0.1:%1"_s.arg(server.port()));
    const QList<QSslCertificate> certificates =
        QSslCertificate::fromData(QByteArray::fromBase64(server.certificateBase64().toLatin1()), QSsl::Der);
    ASSERT_EQ(certificates.size(), 1);
    EXPECT_EQ(certificates.first().subjectInfo(QSslCertificate::CommonName), QStringList{u"ostrel-devserver"_s});
    EXPECT_EQ(certificates.first().publicKey().length(), 2048);
    EXPECT_TRUE(QFileInfo::exists(server.databasePath() + u".key.pem"_s));
    EXPECT_TRUE(QFileInfo::exists(server.databasePath() + u".cert.pem"_s));

    const QString first = server.certificateBase64();
    server.stop();
    ASSERT_TRUE(server.start());
    EXPECT_EQ(server.certificateBase64(), first);
}

TEST_F(DevServerProcessTest, GarbageRequestsAreAnswered400AndTheServiceKeepsRunning)
{
    startAndInstall();
    const QJsonObject good = QJsonDocument::fromJson(OSTRequestEnvelope::bodyForParameters({{u"a"_s, 1}})).object();
    QJsonObject wrongKey = good;
    wrongKey.insert(u"encrypted_key"_s, QString::fromLatin1(QByteArray(256, 'k').toBase64()));
    QJsonObject damagedData = good;
    damagedData.insert(u"encrypted_data"_s, QString::fromLatin1(QByteArray(33, 'd').toBase64()));
    QJsonObject shortVector = good;
    shortVector.insert(u"iv"_s, u"AAAA"_s);
    QJsonObject numbers = good;
    numbers.insert(u"iv"_s, 7);

    const QList<QByteArray> bodies = {"", "hello", "[]", "{}", "{\"iv\": \"!!\", \"encrypted_key\": \"\", \"encrypted_data\": \"\"}",
                                      envelopeText(wrongKey), envelopeText(damagedData), envelopeText(shortVector),
                                      envelopeText(numbers), QByteArray(100000, '{')};
    for (const QByteArray &body : bodies) {
        const test::OSTHTTPAnswer answer = server.send("POST", u"/launch_v3"_s, body);
        EXPECT_EQ(answer.status, 400) << body.left(80).toStdString();
        EXPECT_FALSE(answer.body.isEmpty());
    }

    // Bytes that are not HTTP at all.
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, server.port());
    ASSERT_TRUE(socket.waitForConnected(10000));
    socket.write(QByteArray("\x00\x01\x02 GARBAGE \xff\r\n\r\n", 17) + QByteArray(5000, '\x7f'));
    socket.waitForBytesWritten(10000);
    socket.waitForDisconnected(2000);

    EXPECT_TRUE(server.isRunning());
    EXPECT_EQ(server.send("POST", u"/no_such_endpoint"_s, envelopeText(good)).status, 404);
    EXPECT_TRUE(server.recordedRequests(u"launch_v3"_s).isEmpty());
    const std::optional<QVariantMap> launch = request(u"launch_v3"_s, {{u"launch_type"_s, u"install"_s}});
    ASSERT_TRUE(launch);
    EXPECT_EQ(server.recordedRequests(u"launch_v3"_s).size(), 1);
    EXPECT_EQ(server.recordedRequests().size(), 2); // the unknown endpoint's request is recorded too
}

TEST_F(DevServerProcessTest, FaultsSetAtStartAndOverTheAdminRouteApplyAndRunOut)
{
    startAndInstall({.faults = {u"event:status=503,times=1"_s}});
    QVariantList faults = server.faults();
    ASSERT_EQ(faults.size(), 1);
    EXPECT_EQ(faults.first().toMap().value(u"endpoint"_s), u"event"_s);

    EXPECT_EQ(requestText(u"event"_s, {{u"ost_event_id"_s, u"A"_s}}), std::nullopt);
    EXPECT_TRUE(server.storedEvents().isEmpty()); // a failing answer does not act on the request
    EXPECT_EQ(requestText(u"event"_s, {{u"ost_event_id"_s, u"A"_s}}), u"OK"_s);
    EXPECT_TRUE(server.faults().isEmpty());

    EXPECT_EQ(server.send("POST", u"/_admin/faults"_s, "{\"status\": \"loud\"}").status, 400);
    ASSERT_TRUE(server.setFault({{u"status"_s, 500}}));
    EXPECT_EQ(request(u"launch_v3"_s, {}), std::nullopt);
    EXPECT_EQ(requestText(u"event"_s, {{u"ost_event_id"_s, u"B"_s}}), std::nullopt);
    ASSERT_TRUE(server.clearFaults());
    EXPECT_TRUE(request(u"launch_v3"_s, {}));
    EXPECT_EQ(server.storedEvents().size(), 1);
    EXPECT_EQ(server.recordedRequests(u"event"_s).size(), 3);
}

TEST_F(DevServerProcessTest, ADelayedAnswerToAClientThatLeftIsDropped)
{
    startAndInstall({.faults = {u"launch_v3:delay=1"_s}});
    const OSTRequestManager::Task task =
        OSTRequestManager::sharedManager().apiRequestWithEndpoint(u"launch_v3"_s, {}, nullptr);
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests().size() == 1; }));
    task->cancel();
    ASSERT_TRUE(test::waitUntil([&] { return server.standardError().contains(u"the client of a delayed answer has gone"_s); }));
    ASSERT_TRUE(server.advanceClock(1));
    EXPECT_TRUE(server.isRunning());
    EXPECT_EQ(requestText(u"event"_s, {}), u"OK"_s);
    EXPECT_EQ(server.standardError().count(u"the client of a delayed answer has gone"_s), 1);
}

TEST_F(DevServerProcessTest, EventsAreStoredOncePerIdentifierFromSingleSendsAndBatches)
{
    startAndInstall();
    const QVariantMap first{{u"ost_event_id"_s, u"E1"_s}, {u"event_type"_s, u"OST Session Start"_s}};
    const QVariantMap second{{u"ost_event_id"_s, u"E2"_s}, {u"event_type"_s, u"custom"_s}};
    const QVariantMap third{{u"ost_event_id"_s, u"E3"_s}, {u"event_type"_s, u"custom"_s}};
    EXPECT_EQ(requestText(u"event"_s, first), u"OK"_s);
    EXPECT_EQ(requestText(u"event"_s, {{u"token"_s, u"T"_s}, {u"events"_s, QVariantList{first, second, third}}}), u"OK"_s);
    EXPECT_EQ(requestText(u"event"_s, second), u"OK"_s);

    const QList<QVariantMap> stored = server.storedEvents();
    ASSERT_EQ(stored.size(), 3);
    EXPECT_EQ(stored.at(0).value(u"event_type"_s), u"OST Session Start"_s);
    EXPECT_EQ(stored.at(1), second);
    EXPECT_EQ(stored.at(2), third);
}

TEST_F(DevServerProcessTest, UserPropertiesMergePerUserAndReturnOnRequest)
{
    startAndInstall();
    const auto send = [&](const QVariantMap &properties, bool returnProperties) {
        QVariantMap parameters{{u"device_id"_s, u"D1"_s}, {u"user_properties"_s, properties}};
        if (returnProperties)
            parameters.insert(u"return_properties"_s, u"1"_s);
        return request(u"user_properties"_s, parameters);
    };
    const std::optional<QVariantMap> quiet = send({{u"a"_s, 1}, {u"ost_user_id"_s, u"u1"_s}}, false);
    ASSERT_TRUE(quiet);
    EXPECT_TRUE(quiet->isEmpty());
    const std::optional<QVariantMap> merged = send({{u"b"_s, u"two"_s}, {u"a"_s, 3}, {u"ost_user_id"_s, u"u1"_s}}, true);
    ASSERT_TRUE(merged);
    EXPECT_EQ(merged->value(u"user_properties"_s).toMap(),
              (QVariantMap{{u"a"_s, 3}, {u"b"_s, u"two"_s}, {u"ost_user_id"_s, u"u1"_s}}));
    // Without a user identifier the device holds the properties.
    send({{u"c"_s, true}}, false);
    EXPECT_EQ(server.storedUserProperties(u"device:D1"_s), (QVariantMap{{u"c"_s, true}}));

    const std::optional<QVariantMap> launch = request(u"launch_v3"_s, {{u"user_id"_s, u"u1"_s}});
    ASSERT_TRUE(launch);
    EXPECT_EQ(launch->value(u"app_user"_s).toMap().value(u"user_properties"_s).toMap().value(u"b"_s), u"two"_s);
}

TEST_F(DevServerProcessTest, PhoneVerificationDerivesThePINStoresAndPrintsIt)
{
    startAndInstall();
    EXPECT_EQ(requestText(u"verify_phone_number"_s,
                          {{u"phone_number"_s, u"+1 5551234567"_s}, {u"seed"_s, u"2"_s}, {u"token"_s, u"TOKEN"_s}}),
              u"OK"_s);
    // The rule itself is checked on the endpoint class; here, that the process stores and prints it.
    const QString pin = ostrel::devserver::Endpoints::verificationPin(u"TOKEN"_s, u"+1 5551234567"_s, u"2"_s);
    EXPECT_EQ(server.verificationPin(u"+1 5551234567"_s), pin);
    EXPECT_TRUE(test::waitUntil([&] { return server.standardOutput().contains(u"pin: +1 5551234567 "_s + pin + u"\n"_s); }));
    EXPECT_EQ(requestText(u"verify_phone_number"_s, {{u"seed"_s, u"2"_s}}), std::nullopt);
}

TEST_F(DevServerProcessTest, ATrackingLinkResolvesInAUniversalLinkClick)
{
    startAndInstall();
    const std::optional<QVariantMap> made = request(
        u"tracking_link"_s, {{u"targeting"_s, u"SPRING"_s},
                             {u"additional_params"_s, QVariantMap{{u"deeplink"_s, u"myapp://promo"_s}, {u"campaign"_s, u"c1"_s}}},
                             {u"user_properties"_s, QVariantMap{{u"name"_s, u"Ann"_s}}}});
    ASSERT_TRUE(made);
    const QString link = made->value(u"tracking_link"_s).toString();
    EXPECT_TRUE(link.startsWith(server.serviceURL().toString() + u"/l/"_s)) << link.toStdString();

    const std::optional<QVariantMap> click = request(u"universal_link_click"_s, {{u"url"_s, link}, {u"advertiser_id"_s, u""_s}});
    ASSERT_TRUE(click);
    EXPECT_EQ(click->value(u"return_referral"_s).toInt(), 1);
    EXPECT_EQ(click->value(u"return_deeplink"_s), u"myapp://promo"_s);
    EXPECT_EQ(click->value(u"return_targeting_key"_s), u"SPRING"_s);
    EXPECT_EQ(click->value(u"return_attribution_params"_s).toMap().value(u"campaign"_s), u"c1"_s);
    EXPECT_EQ(click->value(u"return_sender"_s).toMap(), (QVariantMap{{u"name"_s, u"Ann"_s}}));

    const std::optional<QVariantMap> unknown = request(u"universal_link_click"_s, {{u"url"_s, link + u"x"_s}});
    ASSERT_TRUE(unknown);
    EXPECT_TRUE(unknown->isEmpty());
    EXPECT_EQ(request(u"tracking_link"_s, {}), std::nullopt);
}

TEST_F(DevServerProcessTest, ImagesComeFromTheExperienceFolderOnly)
{
    server.writeImage(u"logo.png"_s, "not really a png");
    ASSERT_TRUE(server.start());
    const test::OSTHTTPAnswer image = server.send("GET", u"/images/logo.png"_s);
    EXPECT_EQ(image.status, 200);
    EXPECT_EQ(image.body, QByteArray("not really a png"));
    EXPECT_EQ(server.send("GET", u"/images/missing.png"_s).status, 404);
    EXPECT_EQ(server.send("GET", u"/images/..%2Fservice.sqlite"_s).status, 404);
    EXPECT_EQ(server.send("GET", u"/images/%2E%2E"_s).status, 404);
}
