// The registry of flows and screens: what a delivery registers, how later deliveries merge, what
// is persisted for the next run and re-used from it, the local default, and image preloading.

#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTFlowManager.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QVariantMap screenMetadata(const QString &json, const QString &version, const QVariantMap &extra = {})
{
    QVariantMap metadata = extra;
    metadata.insert(u"json_data"_s, json);
    metadata.insert(u"json_version"_s, version);
    return metadata;
}

QVariantMap flowMetadata(const QVariantList &steps, const QVariantMap &extra = {})
{
    QVariantMap metadata = extra;
    metadata.insert(u"steps"_s, steps);
    return metadata;
}

QStringList keysOf(const OSTFlow::Screens &screens)
{
    QStringList keys;
    for (const auto &screen : screens)
        keys.append(screen->key());
    return keys;
}

class FlowManagerTest : public ::testing::Test {
protected:
    void SetUp() override { OSTLogging::setLoggingLevel(OSTLoggingLevelDebug); }

    static OSTUserDefaultsManager &settings() { return OSTUserDefaultsManager::sharedManager(); }
};

} // namespace

TEST_F(FlowManagerTest, DeliveryRegistersScreensThenFlowsUnderLowerCasedKeys)
{
    OSTFlowManager manager(settings());
    const QVariantMap screens = test::jsonObject(R"({"details": {"json_data": "not json", "json_version": "d1"},
        "Welcome": {"json_data": "{}", "json_version": "w1", "experience_name": "Welcome!", "segment_name": "",
                    "ost_segment_id": 0, "test_name": "A/B", "not_tracked": "x"}, "bogus": "not an object"})");
    const QVariantMap flows = test::jsonObject(R"({"plain": {"steps": []}, "broken": ["welcome"],
        "SignUp": {"steps": ["WELCOME", 7, "Details", "Missing"], "name": "Sign up", "segment_name": "new",
                   "ost_segment_id": "", "properties": {"flowEndAction": {"func": "close"}}}})");

    const QString log = test::captureStandardError([&] { manager.loadFlows(flows, screens); });

    const auto flow = manager.flowForKey(u"signup"_s);
    ASSERT_NE(flow, nullptr);
    EXPECT_EQ(manager.flowForKey(u"SignUp"_s), nullptr) << "lookups are exact";
    EXPECT_FALSE(manager.hasFlowForKey(u"broken"_s));
    EXPECT_FALSE(manager.hasScreenForKey(u"bogus"_s));
    EXPECT_FALSE(manager.hasLocalFlowForKey(u"signup"_s));
    EXPECT_EQ(flow->key(), u"SignUp"_s);
    EXPECT_EQ(flow->name(), u"Sign up"_s);
    EXPECT_EQ(flow->screenKeys(), (QStringList{u"welcome"_s, u"details"_s, u"missing"_s}));
    EXPECT_EQ(keysOf(flow->screens()), (QStringList{u"Welcome"_s, u"details"_s}));
    EXPECT_EQ(flow->trackingParameters(), (QVariantMap{{u"segment_name"_s, u"new"_s}}));
    EXPECT_EQ(flow->endAction().type(), OSTActionTypeClose);
    EXPECT_FALSE(flow->variationName().has_value());
    EXPECT_FALSE(flow->isLocal());
    EXPECT_TRUE(log.contains(u"Screen data missing! (missing)"_s)) << log.toStdString();

    const auto plain = manager.flowForKey(u"plain"_s);
    ASSERT_NE(plain, nullptr);
    EXPECT_EQ(plain->endAction().type(), OSTActionTypeNone) << "a flow without properties still ends somehow";
    EXPECT_TRUE(plain->facebookLoginProperties().isEmpty());

    const auto welcome = manager.screenForKey(u"welcome"_s);
    ASSERT_NE(welcome, nullptr);
    EXPECT_EQ(welcome->flow(), flow);
    EXPECT_EQ(welcome->name(), u"Welcome!"_s);
    EXPECT_EQ(welcome->trackingParameters(),
              (QVariantMap{{u"ost_segment_id"_s, 0}, {u"test_name"_s, u"A/B"_s}}));
    const auto details = manager.screenForKey(u"details"_s);
    ASSERT_NE(details, nullptr) << "a screen whose JSON does not parse is still registered";
    EXPECT_EQ(details->json(), u"not json"_s);
    EXPECT_EQ(manager.cachedVersions(), (QVariantList{u"d1"_s, u"w1"_s}));
}

TEST_F(FlowManagerTest, LaterDeliveriesMergeAndReuseStoredJSONByVersion)
{
    OSTFlowManager manager(settings());
    EXPECT_FALSE(manager.loadLaunchResponse({{u"flow"_s, QVariantMap()},
                                             {u"splash_screen"_s, QVariantMap{{u"a"_s, screenMetadata(u"{}"_s, u"v"_s)}}}}));
    EXPECT_FALSE(manager.hasScreenForKey(u"a"_s)) << "an empty flow object leaves everything as it was";

    const QVariantMap firstFlows{{u"first"_s, flowMetadata({u"one"_s, u"two"_s})}};
    const QVariantMap firstScreens{{u"one"_s, screenMetadata(u"{\"one\":1}"_s, u"v1"_s)},
                                   {u"two"_s, screenMetadata(u"{\"two\":2}"_s, u"v2"_s)}};
    ASSERT_TRUE(manager.loadLaunchResponse({{u"flow"_s, firstFlows}, {u"splash_screen"_s, firstScreens}}));
    manager.synchronize();
    EXPECT_EQ(settings().objectForKey(u"flows"_s), QVariant(firstFlows));
    EXPECT_EQ(settings().objectForKey(u"screens"_s), QVariant(firstScreens));

    // The service leaves out the JSON of versions the SDK holds, under any key.
    const QVariantMap secondFlows{{u"second"_s, flowMetadata({u"renamed"_s, u"unknown"_s, u"fresh"_s})}};
    const QVariantMap secondScreens = test::jsonObject(R"({"unknown": {"json_version": "v9"},
        "renamed": {"json_version": "v2", "experience_name": "Renamed"}, "unversioned": {"experience_name": "?"},
        "fresh": {"json_data": "{\"fresh\":3}", "json_version": "v3"}})");
    const QString log = test::captureStandardError([&] { manager.loadFlows(secondFlows, secondScreens); });
    manager.synchronize();

    const auto renamed = manager.screenForKey(u"renamed"_s);
    ASSERT_NE(renamed, nullptr);
    EXPECT_EQ(renamed->json(), u"{\"two\":2}"_s);
    EXPECT_EQ(renamed->name(), u"Renamed"_s);
    EXPECT_FALSE(manager.hasScreenForKey(u"unknown"_s));
    EXPECT_FALSE(manager.hasScreenForKey(u"unversioned"_s));
    EXPECT_TRUE(log.contains(u"Screen data missing! (unknown)"_s));
    EXPECT_EQ(keysOf(manager.flowForKey(u"second"_s)->screens()), (QStringList{u"renamed"_s, u"fresh"_s}));
    EXPECT_TRUE(manager.hasFlowForKey(u"first"_s) && manager.hasScreenForKey(u"one"_s))
        << "nothing is forgotten within a run";

    // The store holds only the last delivery, every screen with its JSON; the next run registers it.
    EXPECT_EQ(settings().objectForKey(u"flows"_s), QVariant(secondFlows));
    const QVariantMap stored = settings().objectForKey(u"screens"_s).toMap();
    EXPECT_EQ(stored.keys(), (QStringList{u"fresh"_s, u"renamed"_s}));
    EXPECT_EQ(stored.value(u"renamed"_s).toMap().value(u"json_data"_s), u"{\"two\":2}"_s);

    OSTFlowManager nextRun(settings());
    EXPECT_FALSE(nextRun.hasFlowForKey(u"first"_s));
    ASSERT_TRUE(nextRun.hasFlowForKey(u"second"_s));
    EXPECT_EQ(nextRun.screenForKey(u"renamed"_s)->json(), u"{\"two\":2}"_s);
    EXPECT_EQ(nextRun.cachedVersions(), (QVariantList{u"v3"_s, u"v2"_s}));
}

TEST_F(FlowManagerTest, WithoutStoredScreensAVersionOnlyEntryRegistersWithEmptyJSON)
{
    OSTFlowManager manager(settings());
    manager.loadFlows({{u"f"_s, flowMetadata({u"s"_s})}}, {{u"s"_s, QVariantMap{{u"json_version"_s, u"v1"_s}}}});
    const auto screen = manager.screenForKey(u"s"_s);
    ASSERT_NE(screen, nullptr);
    EXPECT_EQ(screen->json(), u""_s);
    EXPECT_EQ(manager.flowForKey(u"f"_s)->screens().size(), 1u);
}

TEST_F(FlowManagerTest, ReadersOnOtherThreadsSeeWholeDeliveries)
{
    OSTFlowManager manager(settings());
    // Each delivery holds a flow and all the screens its steps name; a reader that finds the flow
    // must find every one of its screens.
    std::atomic<bool> done{false};
    std::atomic<int> incomplete{0};
    std::thread reader([&] {
        while (!done.load()) {
            for (int round = 0; round < 20; ++round) {
                const auto flow = manager.flowForKey(u"flow%1"_s.arg(round));
                if (flow && flow->screens().size() != 3)
                    incomplete.fetch_add(1);
            }
        }
    });
    for (int round = 0; round < 20; ++round) {
        QVariantMap screens;
        for (int step = 0; step < 3; ++step)
            screens.insert(u"r%1s%2"_s.arg(round).arg(step), screenMetadata(u"{}"_s, u"v%1"_s.arg(round)));
        manager.loadFlows({{u"flow%1"_s.arg(round), flowMetadata(QVariant(screens.keys()).toList())}}, screens);
    }
    done = true;
    reader.join();
    EXPECT_EQ(incomplete.load(), 0);
    EXPECT_EQ(manager.cachedVersions().size(), 60);
}

TEST_F(FlowManagerTest, LocalDefaultInTheMainBundleRegistersLocalFlowsAndScreens)
{
    QTemporaryDir bundle;
    test::writeFile(bundle.filePath(u"OSTDefault.json"_s), R"({"flow": {"Install": {"steps": ["Hello"]}},
        "splash": {"Hello": {"labels": {}}}, "metadata": {"splash_screen": {"Hello": {"json_version": "h1"}}}})");
    OSTBundle::setMainBundlePath(bundle.path());
    ASSERT_TRUE(OSTServiceManager::localDefault().has_value());

    OSTFlowManager manager(settings());
    ASSERT_TRUE(manager.loadLocalDefault(*OSTServiceManager::localDefault()));
    const auto flow = manager.localFlowForKey(u"install"_s);
    ASSERT_NE(flow, nullptr);
    EXPECT_TRUE(flow->isLocal());
    ASSERT_EQ(flow->screens().size(), 1u);
    const auto screen = manager.localScreenForKey(u"hello"_s);
    ASSERT_NE(screen, nullptr);
    EXPECT_TRUE(screen->isLocal());
    EXPECT_EQ(screen->flow(), flow);
    EXPECT_EQ(QJsonDocument::fromJson(screen->json().toUtf8()).toVariant(), QVariant(QVariantMap{{u"labels"_s, QVariantMap()}}));
    EXPECT_FALSE(manager.hasFlowForKey(u"install"_s));
    EXPECT_TRUE(manager.cachedVersions().isEmpty()) << "local screens are not listed as cached";
    manager.synchronize();
    EXPECT_FALSE(settings().objectForKey(u"screens"_s).isValid()) << "the local default is never persisted";
}

TEST_F(FlowManagerTest, LocalDefaultWithOneScreenLackingItsJSONRegistersNothing)
{
    const QVariantMap document = test::jsonObject(R"({"flow": {"install": {"steps": ["a", "b"]}},
        "splash": {"a": {"labels": {}}, "b": "not an object"}, "metadata": {"splash_screen": {"a": {}, "b": {}}}})");
    OSTFlowManager manager(settings());
    OSTLogging::setLoggingLevel(OSTLoggingLevelWarning);
    const QString log = test::captureStandardError([&] { EXPECT_FALSE(manager.loadLocalDefault(document)); });
    EXPECT_FALSE(manager.hasLocalFlowForKey(u"install"_s));
    EXPECT_FALSE(manager.hasLocalScreenForKey(u"a"_s));
    EXPECT_TRUE(log.contains(u"\"b\""_s)) << log.toStdString();

    QVariantMap withoutMetadata = document;
    withoutMetadata.remove(u"metadata"_s);
    EXPECT_FALSE(manager.loadLocalDefault(withoutMetadata));
    EXPECT_FALSE(manager.hasLocalFlowForKey(u"install"_s));
}

TEST_F(FlowManagerTest, PreloadingStopsAtTheFirstAddressThatIsNotAURL)
{
    OSTBundle::setMainBundlePath(QTemporaryDir().path());
    // Images, then each button's states, then inputs.
    const auto screenJSON = [](const QString &prefix, const QString &images) {
        return uR"({"images": %1, "inputs": {"name": {"image": "http://127.0.0.1:9/%2input.png"}},
                    "buttons": {"go": {"states": {"normal": {"image": "http://127.0.0.1:9/%2button.png"}}}}})"_s
            .arg(images, prefix);
    };
    const QVariantMap screens{
        {u"good"_s, screenMetadata(screenJSON(u"good-"_s, uR"({"hero": {"image": "http://127.0.0.1:9/hero.png"},
                                                               "skipped": {"image": 5}})"_s), u"g"_s)},
        {u"stops"_s, screenMetadata(screenJSON(u"stops-"_s, uR"({"a": {"image": ""},
                                                                 "b": {"image": "http://127.0.0.1:9/never.png"}})"_s),
                                    u"s"_s)},
        {u"unparsable"_s, screenMetadata(u"{\"images\":"_s, u"u"_s)},
    };
    OSTFlowManager manager(settings());
    const QString log = test::captureStandardError([&] {
        manager.loadFlows({{u"f"_s, flowMetadata({})}}, screens);
        manager.synchronize();
    });

    QStringList preloaded;
    for (const QString &line : log.split(u'\n'))
        if (line.startsWith(u"Ostrel Debug: Preloading image: "_s))
            preloaded.append(line.mid(line.lastIndexOf(u'/') + 1));
    EXPECT_EQ(preloaded, (QStringList{u"hero.png"_s, u"good-button.png"_s, u"good-input.png"_s})) << log.toStdString();
    EXPECT_TRUE(manager.hasScreenForKey(u"unparsable"_s));
}
