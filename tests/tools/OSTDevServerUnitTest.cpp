// The development service's classes on their own, without a process or a socket.

#include "AdminRoute.h"
#include "DevServerOptions.h"
#include "Endpoints.h"
#include "ExperienceLoader.h"
#include "FaultSwitches.h"
#include "ServiceClock.h"

#include "support/OSTTestSupport.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel::devserver;
using namespace Qt::StringLiterals;

namespace {

QJsonObject objectOf(const char *json)
{
    return QJsonDocument::fromJson(json).object();
}

} // namespace

TEST(DevServerExperience, ScreensTravelAsTextWithAVersionAndCachedVersionsTravelWithoutIt)
{
    QTemporaryDir folder;
    ostrel::test::writeFile(folder.filePath(u"experience.json"_s), R"({
        "flow": {"Login": {"steps": ["One", "Two", "Three"]}},
        "splash": {"One": {"labels": {"a": {"text": "1"}}}, "Two": {"images": {}}},
        "metadata": {"splash_screen": {"One": {"json_version": "v1", "screen_name": "first"},
                                       "Three": {"json_version": "v3"}}}})");
    const ExperienceLoader loader(folder.path(), {});

    const QJsonObject fresh = loader.delivery({});
    EXPECT_EQ(fresh.value(u"flow"_s).toObject(), objectOf(R"({"Login": {"steps": ["One", "Two", "Three"]}})"));
    const QJsonObject screens = fresh.value(u"splash_screen"_s).toObject();
    EXPECT_EQ(screens.value(u"One"_s).toObject(),
              objectOf(R"({"json_version": "v1", "screen_name": "first", "json_data": "{\"labels\":{\"a\":{\"text\":\"1\"}}}"})"));
    const QString derived = screens.value(u"Two"_s).toObject().value(u"json_version"_s).toString();
    EXPECT_EQ(derived, ExperienceLoader::versionOfScreenText("{\"images\":{}}"));
    EXPECT_NE(derived, ExperienceLoader::versionOfScreenText("{\"images\":{\"x\":{}}}"));
    // Metadata without a screen body is passed on as it stands.
    EXPECT_EQ(screens.value(u"Three"_s).toObject(), objectOf(R"({"json_version": "v3"})"));

    const QJsonObject cached = loader.delivery({u"v1"_s, derived}).value(u"splash_screen"_s).toObject();
    EXPECT_FALSE(cached.value(u"One"_s).toObject().contains(u"json_data"_s));
    EXPECT_FALSE(cached.value(u"Two"_s).toObject().contains(u"json_data"_s));
    EXPECT_EQ(cached.value(u"Two"_s).toObject().value(u"json_version"_s).toString(), derived);
}

TEST(DevServerExperience, BrokenOrMissingFilesReadAsEmptyAndImagesStayInTheirFolder)
{
    QTemporaryDir folder;
    const ExperienceLoader missing(folder.path(), {});
    EXPECT_TRUE(missing.launchConfiguration().isEmpty());
    EXPECT_TRUE(missing.delivery({}).value(u"flow"_s).toObject().isEmpty());

    ostrel::test::writeFile(folder.filePath(u"experience.json"_s), "[1, 2");
    ostrel::test::writeFile(folder.filePath(u"config.json"_s), R"({"session_delay": 5, "show_key": "login"})");
    ostrel::test::writeFile(folder.filePath(u"images/logo.png"_s), "png");
    ostrel::test::writeFile(folder.filePath(u"secret.txt"_s), "secret");
    const ExperienceLoader loader(folder.path(), {});
    EXPECT_TRUE(loader.delivery({}).value(u"splash_screen"_s).toObject().isEmpty());
    EXPECT_EQ(loader.launchConfiguration(), objectOf(R"({"session_delay": 5, "show_key": "login"})"));
    EXPECT_EQ(loader.imagePath(u"logo.png"_s), folder.filePath(u"images/logo.png"_s));
    EXPECT_EQ(loader.imagePath(u"../secret.txt"_s), QString());
    EXPECT_EQ(loader.imagePath(u".."_s), QString());
    EXPECT_EQ(loader.imagePath(u"absent.png"_s), QString());
}

TEST(DevServerFaults, CommandLineAndJSONReadTheSameFaults)
{
    QString error;
    const auto parsed = Fault::fromCommandLine(u"launch_v3:status=500,delay=2.5,times=2"_s, error);
    ASSERT_TRUE(parsed) << error.toStdString();
    EXPECT_EQ(parsed->first, u"launch_v3"_s);
    EXPECT_EQ(parsed->second.toJson(u"launch_v3"_s),
              objectOf(R"({"endpoint": "launch_v3", "status": 500, "delay": 2.5, "times": 2, "body": "normal", "connection": "normal"})"));

    const auto body = Fault::fromCommandLine(u"*:body=bad-padding,connection=truncate"_s, error);
    ASSERT_TRUE(body);
    EXPECT_EQ(body->second.body, Fault::Body::BadPadding);
    EXPECT_EQ(body->second.connection, Fault::Connection::Truncate);

    for (const QString &bad : {u"status=500"_s, u"event:status=99"_s, u"event:status=abc"_s, u"event:body=weird"_s,
                               u"event:delay=-1"_s, u"event:times=0"_s, u"event:colour=red"_s, u"event:status"_s}) {
        error.clear();
        EXPECT_FALSE(Fault::fromCommandLine(bad, error)) << bad.toStdString();
        EXPECT_FALSE(error.isEmpty()) << bad.toStdString();
    }
}

TEST(DevServerFaults, AnEndpointsOwnFaultWinsOverTheWildcardAndCountedFaultsRunOut)
{
    FaultSwitches switches;
    QString error;
    switches.set(u"*"_s, *Fault::fromJson(objectOf(R"({"delay": 1})"), error));
    switches.set(u"event"_s, *Fault::fromJson(objectOf(R"({"status": 503, "times": 2})"), error));

    EXPECT_EQ(switches.take(u"event"_s)->status, 503);
    EXPECT_EQ(switches.take(u"event"_s)->status, 503);
    const std::optional<Fault> afterwards = switches.take(u"event"_s);
    ASSERT_TRUE(afterwards);
    EXPECT_FALSE(afterwards->status);
    EXPECT_DOUBLE_EQ(afterwards->delaySeconds, 1.0);
    EXPECT_DOUBLE_EQ(switches.take(u"launch_v3"_s)->delaySeconds, 1.0);
    switches.clear();
    EXPECT_FALSE(switches.take(u"launch_v3"_s));
}

TEST(DevServerFaults, AShareFaultsThatPartOfTheAnswersEvenlyAndCountsOnlyFaultedOnes)
{
    FaultSwitches switches;
    QString error;
    switches.set(u"event"_s, *Fault::fromJson(objectOf(R"({"status": 500, "share": 0.5, "times": 3})"), error));
    std::vector<bool> faulted;
    for (int answer = 0; answer < 8; ++answer)
        faulted.push_back(switches.take(u"event"_s).has_value());
    EXPECT_EQ(faulted, (std::vector<bool>{false, true, false, true, false, true, false, false}));
    for (const QString &bad : {u"event:share=0"_s, u"event:share=1.5"_s})
        EXPECT_FALSE(Fault::fromCommandLine(bad, error)) << bad.toStdString();
}

TEST(DevServerAdmin, AnswersLoopbackOnlyAndAppliesAllOrNothing)
{
    FaultSwitches switches;
    ServiceClock clock(ServiceClock::Kind::Driven);
    AdminRoute admin(switches, clock);
    const QHostAddress loopback(QHostAddress::LocalHost);

    const AdminRoute::Answer remote = admin.handle(AdminRoute::Method::Post, QHostAddress(u"192.0.2.7"_s),
                                                   R"({"endpoint": "event", "status": 500})");
    EXPECT_EQ(remote.status, 403);
    EXPECT_TRUE(switches.toJson().isEmpty());
    EXPECT_EQ(admin.handle(AdminRoute::Method::Get, QHostAddress(u"10.0.0.2"_s), {}).status, 403);

    const AdminRoute::Answer partlyBad = admin.handle(
        AdminRoute::Method::Post, loopback, R"([{"endpoint": "event", "status": 500}, {"endpoint": "x", "body": "?"}])");
    EXPECT_EQ(partlyBad.status, 400);
    EXPECT_TRUE(switches.toJson().isEmpty());
    EXPECT_EQ(admin.handle(AdminRoute::Method::Post, loopback, "not json").status, 400);

    const AdminRoute::Answer set = admin.handle(AdminRoute::Method::Post, QHostAddress(QHostAddress::LocalHostIPv6),
                                                R"([{"endpoint": "event", "status": 500}, {"delay": 3}])");
    EXPECT_EQ(set.status, 200);
    EXPECT_EQ(admin.handle(AdminRoute::Method::Get, loopback, {}).body.toArray().size(), 2);
    EXPECT_EQ(switches.take(u"launch_v3"_s)->delaySeconds, 3.0);

    EXPECT_EQ(admin.handle(AdminRoute::Method::Delete, loopback, {}).status, 200);
    EXPECT_TRUE(switches.toJson().isEmpty());
}

TEST(DevServerAdmin, ADrivenClockRunsHeldWorkWhenMovedPastItsTimeInOrder)
{
    FaultSwitches switches;
    ServiceClock clock(ServiceClock::Kind::Driven);
    AdminRoute admin(switches, clock);
    const QHostAddress loopback(QHostAddress::LocalHost);
    QStringList ran;
    clock.callAfter(2, [&] { ran << u"late"_s; });
    clock.callAfter(1, [&] { ran << u"first"_s; });
    clock.callAfter(1, [&] { ran << u"second"_s; });

    EXPECT_EQ(admin.handleClock(AdminRoute::Method::Post, loopback, R"({"advance": 0.5})").status, 200);
    EXPECT_TRUE(ran.isEmpty());
    const AdminRoute::Answer moved = admin.handleClock(AdminRoute::Method::Post, loopback, R"({"advance": 0.5})");
    EXPECT_EQ(ran, (QStringList{u"first"_s, u"second"_s}));
    EXPECT_EQ(moved.body.toObject(), objectOf(R"({"seconds": 1, "pending": 1})"));
    for (const char *bad : {R"({"advance": -1})", R"({"advance": "2"})", "[]"})
        EXPECT_EQ(admin.handleClock(AdminRoute::Method::Post, loopback, bad).status, 400) << bad;
    EXPECT_EQ(admin.handleClock(AdminRoute::Method::Post, QHostAddress(u"192.0.2.7"_s), R"({"advance": 5})").status, 403);
    EXPECT_EQ(ran.size(), 2);

    ServiceClock realTime(ServiceClock::Kind::Real);
    AdminRoute realAdmin(switches, realTime);
    EXPECT_EQ(realAdmin.handleClock(AdminRoute::Method::Post, loopback, R"({"advance": 1})").status, 409);
}

TEST(DevServerEndpoints, ThePINIsTheMD5RuleWithLeadingZeros)
{
    EXPECT_EQ(Endpoints::verificationPin(u"TOKEN"_s, u"5551234567"_s, u"42"_s), u"6501"_s);
    EXPECT_EQ(Endpoints::verificationPin(u"TOKEN"_s, u"5551234567"_s, u"2"_s), u"0020"_s);
    EXPECT_EQ(Endpoints::verificationPin(u"abc"_s, u"+1 555"_s, u"7"_s), u"9026"_s);
}

TEST(DevServerOptions, ReadsTheCommandLineAndRefusesNonsense)
{
    QString error;
    const auto options = DevServerOptions::parse({u"ostrel-devserver"_s, u"--port"_s, u"0"_s, u"--data"_s, u"/tmp/x.sqlite"_s,
                                                  u"--experience"_s, u"/tmp/exp"_s, u"--tls"_s, u"--fault"_s,
                                                  u"event:status=500"_s, u"--fault"_s, u"*:delay=1"_s},
                                                 error);
    ASSERT_TRUE(options) << error.toStdString();
    EXPECT_EQ(options->port, 0);
    EXPECT_TRUE(options->tls);
    EXPECT_EQ(options->keyPath(), u"/tmp/x.sqlite.key.pem"_s);
    EXPECT_EQ(options->certificatePath(), u"/tmp/x.sqlite.cert.pem"_s);
    EXPECT_EQ(options->experienceFolder, u"/tmp/exp"_s);
    ASSERT_EQ(options->faults.size(), 2);
    EXPECT_EQ(options->faults.at(1).first, u"*"_s);
    EXPECT_TRUE(options->address.isLoopback());

    for (const QStringList &bad : {QStringList{u"x"_s, u"--port"_s, u"70000"_s}, QStringList{u"x"_s, u"--port"_s, u"http"_s},
                                   QStringList{u"x"_s, u"--listen"_s, u"somewhere"_s}, QStringList{u"x"_s, u"--fault"_s, u"event"_s},
                                   QStringList{u"x"_s, u"--unknown"_s}, QStringList{u"x"_s, u"stray"_s}}) {
        error.clear();
        EXPECT_FALSE(DevServerOptions::parse(bad, error)) << bad.join(u' ').toStdString();
        EXPECT_FALSE(error.isEmpty());
    }
}
