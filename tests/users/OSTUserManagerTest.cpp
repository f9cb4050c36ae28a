// The current user end to end: the SDK is started through the public facade against
// ostrel-devserver over loopback; the tests read what the service received and what the SDK
// stored.

#include <ostrel/OSTConstants.h>
#include <ostrel/Ostrel.h>

#include "core/OSTFileManager.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserArchive.h"
#include "users/OSTUserManager.h"

#include <QDateTime>
#include <QFile>
#include <QImage>
#include <QPoint>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

class Users : public ::testing::Test {
protected:
    void SetUp() override { OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host); }

    // Starts the service and the SDK and waits until the first launch has finished.
    void start()
    {
        ASSERT_TRUE(server.start());
        server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
        Ostrel::start();
        ASSERT_TRUE(test::launchAndWait());
    }

    QList<test::OSTRecordedRequest> propertyRequests() const { return server.recordedRequests(u"user_properties"_s); }
    bool waitForPropertyRequests(int count) const { return test::waitUntil([&] { return propertyRequests().size() >= count; }); }
    QVariantMap lastSentProperties() const { return propertyRequests().last().parameters.value(u"user_properties"_s).toMap(); }

    // Sends another launch request, waits until its response was handed out and returns what
    // the service received.
    QVariantMap launchParameters() const
    {
        const size_t before = launchEvents.statistics(u"launch"_s).size();
        OSTServiceManager::sharedManager().launchWithType(u"launch"_s, OSTServiceManager::Delivery::FirstSend);
        EXPECT_TRUE(test::waitUntil([&] { return launchEvents.statistics(u"launch"_s).size() > before; }));
        return server.recordedRequests(u"launch_v3"_s).last().parameters;
    }

    // The events of one name as the service stored them.
    QList<QVariantMap> storedEvents(const QString &name) const
    {
        QList<QVariantMap> events = server.storedEvents();
        events.removeIf([&](const QVariantMap &event) { return event.value(u"event_type"_s) != name; });
        return events;
    }

    static OSTUserManager &users() { return OSTUserManager::sharedManager(); }
    static OSTUser storedUser()
    {
        const QVariant stored = OSTUserDefaultsManager::sharedManager().objectForKey(u"currentUser"_s);
        return OSTUserArchive::unarchive(stored.toByteArray()).value_or(OSTUser());
    }

    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    test::OSTEventRecorder launchEvents;
};

} // namespace

TEST_F(Users, LogInSendsThePropertiesMergesTheServicesAndLaterLaunchesCarryTheUser)
{
    start();
    EXPECT_EQ(launchParameters().value(u"requires_login"_s), true) << "log-in is required until the host says not";
    users().appendUserProperties({{u"plan"_s, u"gold"_s}}, OSTUserManager::Delivery::KeepLocal);
    EXPECT_TRUE(propertyRequests().isEmpty()) << "keeping a property local sends nothing";

    Ostrel::logInUserWithID(u"alice"_s);
    ASSERT_TRUE(waitForPropertyRequests(1));
    const QVariantMap request = propertyRequests().last().parameters;
    EXPECT_EQ(request.value(u"return_properties"_s), u"1"_s);
    EXPECT_EQ(request.value(u"token"_s), u"test-token"_s);
    EXPECT_EQ(request.value(u"advertiser_id"_s), u""_s);
    EXPECT_EQ(lastSentProperties(), (QVariantMap{{u"plan"_s, u"gold"_s}, {u"ost_user_id"_s, u"alice"_s}}));

    Ostrel::setRequiresLogin(false);
    QVariantMap launch = launchParameters();
    EXPECT_EQ(launch.value(u"user_id"_s), u"alice"_s);
    EXPECT_EQ(launch.value(u"logged_in_lifetime"_s), true);
    EXPECT_EQ(launch.value(u"requires_login"_s), false);
    EXPECT_TRUE(users().isLoggedIn());
    EXPECT_EQ(Ostrel::currentUser().properties(), (QVariantMap{{u"plan"_s, u"gold"_s}}))
        << "the identifier the service echoes in \"app_user\" is no property";

    Ostrel::logOutUser();
    EXPECT_EQ(Ostrel::currentUser(), OSTUser());
    EXPECT_EQ(storedUser(), OSTUser()) << "the empty user replaces the stored one";
    EXPECT_FALSE(users().isLoggedIn());
    launch = launchParameters();
    EXPECT_EQ(launch.value(u"user_id"_s), u""_s);
    EXPECT_EQ(launch.value(u"logged_in_lifetime"_s), true) << "the installation has seen a log-in";

    // Logging in again as alice brings back what the service holds for her.
    users().appendUserProperties({{u"color"_s, u"red"_s}}, OSTUserManager::Delivery::KeepLocal);
    Ostrel::logInUserWithID(u"alice"_s);
    ASSERT_TRUE(test::waitUntil([] { return Ostrel::currentUser().properties().contains(u"plan"_s); }));
    const QVariantMap expected{{u"color"_s, u"red"_s}, {u"plan"_s, u"gold"_s}};
    EXPECT_EQ(Ostrel::currentUser().properties(), expected) << "the service's \"ost_\" keys are not properties";
    EXPECT_EQ(storedUser().properties(), expected);
    EXPECT_EQ(storedUser().userID(), u"alice"_s);
}

TEST_F(Users, AppendingSavesOnlyRealChangesAndSendsNormalisedValues)
{
    start();
    OSTLogging::setLoggingLevel(2);
    QSignalSpy changes(&users(), &OSTUserManager::propertiesChanged);

    Ostrel::appendUserProperties({{u"a"_s, 1}});
    Ostrel::appendUserProperties({{u"a"_s, 1}});
    EXPECT_EQ(changes.count(), 1) << "the second append changes nothing, so nothing is saved or announced";
    ASSERT_TRUE(waitForPropertyRequests(2)) << "each append sends";
    EXPECT_FALSE(propertyRequests().last().parameters.contains(u"return_properties"_s));

    QImage avatar(4, 3, QImage::Format_ARGB32);
    avatar.fill(Qt::red);
    const QDateTime born(QDate(2024, 2, 29), QTime(13, 45, 6, 789), Qt::UTC);
    const QString log = test::captureStandardError([&] {
        Ostrel::appendUserProperties({{u"avatar"_s, QVariant::fromValue(avatar)}, {u"born"_s, born}, {u"spot"_s, QPoint(1, 2)},
                                      {u"tags"_s, QVariantList{u"x"_s, 2}}, {u"visits"_s, QVariantList{born}}});
    });
    EXPECT_TRUE(log.contains(u"\"spot\""_s) && log.contains(u"\"visits\""_s)) << log.toStdString();
    ASSERT_TRUE(waitForPropertyRequests(3));
    const QVariantMap expected{{u"a"_s, 1}, {u"avatar"_s, u"avatar.png"_s},
                               {u"born"_s, u"2024-02-29 13:45:06.789000"_s}, {u"tags"_s, QVariantList{u"x"_s, 2}}};
    EXPECT_EQ(lastSentProperties(), expected);
    EXPECT_EQ(Ostrel::currentUser().properties(), expected);
    EXPECT_EQ(storedUser().properties(), expected);
    ASSERT_EQ(changes.count(), 2);
    EXPECT_EQ(changes.last().first().toMap(), expected);

    const QString avatarPath = OSTFileManager::sharedManager().baseDirectory() + u"/images/avatar.png"_s;
    ASSERT_TRUE(QFile::exists(avatarPath));
    EXPECT_EQ(QImage(avatarPath).size(), QSize(4, 3));
}

TEST_F(Users, AFailedSendKeepsThePropertiesForTheNextOne)
{
    start();
    ASSERT_TRUE(server.setFault({{u"endpoint"_s, u"user_properties"_s}, {u"status"_s, 500}, {u"times"_s, 1}}));
    users().appendUserProperties({{u"first"_s, 1}}, OSTUserManager::Delivery::KeepLocal);
    std::optional<QVariantMap> answer;
    users().sendUserPropertiesWithCompletion([&](const QVariantMap &properties) { answer = properties; });
    ASSERT_TRUE(test::waitUntil([&] { return answer.has_value(); }));
    EXPECT_TRUE(answer->isEmpty()) << "a failure answers with no properties";
    // Without a user identifier the service files the properties under the device.
    const QString deviceKey = u"device:"_s + OSTUserDefaultsManager::sharedManager().objectForKey(u"ost_device_id"_s).toString();
    EXPECT_TRUE(server.storedUserProperties(deviceKey).isEmpty());

    Ostrel::appendUserProperties({{u"second"_s, 2}});
    ASSERT_TRUE(test::waitUntil([&] { return server.storedUserProperties(deviceKey).size() == 2; }));
    EXPECT_EQ(server.storedUserProperties(deviceKey), (QVariantMap{{u"first"_s, 1}, {u"second"_s, 2}}));
}

TEST_F(Users, SignUpLogInAndLogOutEventsNameTheUser)
{
    start();
    users().setUserName(u"Ada"_s);
    ASSERT_TRUE(waitForPropertyRequests(1)) << "a change of name sends the properties";
    EXPECT_EQ(lastSentProperties().value(u"ost_name"_s), u"Ada"_s);

    Ostrel::signUpUserWithID(u"u1"_s);
    Ostrel::logInUserWithID(u"u2"_s);
    Ostrel::logOutUser();
    // Each goes in a request of its own, so they may be stored in any order.
    ASSERT_TRUE(test::waitUntil([&] {
        return !storedEvents(OSTSignupEvent).isEmpty() && !storedEvents(OSTLoginEvent).isEmpty()
            && !storedEvents(OSTLogoutEvent).isEmpty();
    }));
    const struct {
        QString name;
        QString userID;
    } expectations[] = {{OSTSignupEvent, u"u1"_s}, {OSTLoginEvent, u"u2"_s}, {OSTLogoutEvent, u"u2"_s}};
    for (const auto &expected : expectations) {
        const QList<QVariantMap> events = storedEvents(expected.name);
        ASSERT_EQ(events.size(), 1) << expected.name.toStdString();
        EXPECT_EQ(events.first().value(u"user_id"_s), expected.userID) << expected.name.toStdString();
        EXPECT_EQ(events.first().value(u"name"_s), u"Ada"_s) << expected.name.toStdString();
    }

    Ostrel::trackEventWithName(u"after"_s);
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([&] { return !storedEvents(u"after"_s).isEmpty(); }));
    EXPECT_FALSE(storedEvents(u"after"_s).first().contains(u"user_id"_s)) << "nobody is logged in any more";
}

TEST_F(Users, TheLaunchResponsesAppUserSetsTestsAndMergesProperties)
{
    server.writeLaunchConfiguration(test::jsonObject(R"({"app_user": {
        "ab_tests": [{"test_name": "colour", "variation": "b"}, {"test_name": 7, "variation": "c"}, {}, "junk"],
        "user_properties": {"tier": "pro"}}})"));
    start();
    const QList<OSTUserABNTest> colourTest{OSTUserABNTest(u"colour"_s, u"b"_s), OSTUserABNTest(u""_s, u"c"_s),
                                           OSTUserABNTest(u""_s, u""_s)};
    EXPECT_EQ(Ostrel::currentUser().activeABNTests(), colourTest)
        << "a field that is not a string reads as empty; an entry that is no object is skipped";
    EXPECT_EQ(Ostrel::currentUser().properties(), (QVariantMap{{u"tier"_s, u"pro"_s}}));
    EXPECT_EQ(storedUser().activeABNTests(), colourTest);

    // Absent or malformed parts leave the user as it is.
    const std::optional<QVariantMap> responses[] = {
        std::nullopt,
        QVariantMap{{u"app_user"_s, u"text"_s}},
        QVariantMap{{u"app_user"_s, QVariantMap{{u"ab_tests"_s, u"none"_s}, {u"user_properties"_s, 3}}}},
    };
    for (const auto &response : responses)
        users().processLaunchResponse(response);
    EXPECT_EQ(Ostrel::currentUser().activeABNTests(), colourTest);
    EXPECT_EQ(Ostrel::currentUser().properties(), (QVariantMap{{u"tier"_s, u"pro"_s}}));

    users().processLaunchResponse(QVariantMap{{u"app_user"_s, QVariantMap{{u"ab_tests"_s, QVariantList()}}}});
    EXPECT_TRUE(Ostrel::currentUser().activeABNTests().isEmpty()) << "a present list replaces the old one";
}
