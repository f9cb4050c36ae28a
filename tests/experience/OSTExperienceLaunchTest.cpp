// The experience document over a real launch: ostrel-devserver answers "launch_v3" with flows and
// screens; a first run registers and persists them, the next run lists their versions in
// "cached_versions", and the service then leaves their JSON out.

#include <ostrel/Ostrel.h>

#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTFlowManager.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QJsonDocument>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QVariantMap welcomeJSON{{u"labels"_s, QVariantMap{{u"title"_s, QVariantMap{{u"text"_s, u"Hi"_s}}}}}};
const QVariantMap detailsJSON{{u"inputs"_s, QVariantMap()}};

QVariantMap experience(const QVariantMap &welcome = welcomeJSON)
{
    return {
        {u"flow"_s, QVariantMap{{u"Install"_s, QVariantMap{{u"name"_s, u"Install"_s},
                                                            {u"steps"_s, QVariantList{u"Welcome"_s, u"Details"_s}}}}}},
        {u"splash"_s, QVariantMap{{u"Welcome"_s, welcome}, {u"Details"_s, detailsJSON}}},
        {u"metadata"_s, QVariantMap{{u"splash_screen"_s,
                                     QVariantMap{{u"Welcome"_s, QVariantMap{{u"json_version"_s, u"welcome-1"_s}}},
                                                 {u"Details"_s, QVariantMap{{u"json_version"_s, u"details-1"_s}}}}}}},
    };
}

QVariant parsed(const QString &json)
{
    return QJsonDocument::fromJson(json.toUtf8()).toVariant();
}

// The first run of the installation, in a process of its own writing the parent's data folder.
const bool firstRunRegistered = test::OSTChildProcess::registerMode(u"experience-first-run"_s, [](const QStringList &arguments) {
    test::OSTChildProcess::adoptParentData(arguments);
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    if (!test::launchAndWait())
        return 1;
    const auto flow = OSTFlowManager::sharedManager().flowForKey(u"install"_s);
    if (!flow || flow->screens().size() != 2)
        return 2;
    // The delivery is written on a queue of its own; terminating must not lose it.
    OSTApplication::sharedApplication().terminate();
    return 0;
});

} // namespace

TEST(ExperienceLaunch, NextRunListsCachedVersionsAndReusesTheirJSON)
{
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    server.writeExperience(experience());
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});

    ASSERT_EQ(test::OSTChildProcess::runSharingData(u"experience-first-run"_s, bundle.path()), 0);
    auto launches = server.recordedRequests(u"launch_v3"_s);
    ASSERT_EQ(launches.size(), 1);
    EXPECT_EQ(launches.first().parameters.value(u"cached_versions"_s), QVariant(QVariantList()))
        << QJsonDocument::fromVariant(launches.first().parameters).toJson().toStdString();

    // The service now holds other JSON under the same version: the SDK must keep what it has.
    server.writeExperience(experience({{u"labels"_s, QVariantMap()}}));

    // This run starts with the first run's delivery registered from the store.
    ASSERT_TRUE(OSTFlowManager::sharedManager().hasFlowForKey(u"install"_s));
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    ASSERT_TRUE(test::launchAndWait());
    launches = server.recordedRequests(u"launch_v3"_s);
    ASSERT_EQ(launches.size(), 2);
    EXPECT_EQ(launches.last().parameters.value(u"cached_versions"_s),
              QVariant(QVariantList{u"details-1"_s, u"welcome-1"_s}));

    // The service left the JSON out this time; the screens keep the JSON of their version, in the
    // registry and in the store that now holds this launch's delivery.
    const auto flow = OSTFlowManager::sharedManager().flowForKey(u"install"_s);
    ASSERT_NE(flow, nullptr);
    ASSERT_EQ(flow->screens().size(), 2u);
    EXPECT_EQ(parsed(flow->screens().at(0)->json()), QVariant(welcomeJSON));
    EXPECT_EQ(parsed(flow->screens().at(1)->json()), QVariant(detailsJSON));
    OSTFlowManager::sharedManager().synchronize();
    const QVariantMap stored = OSTUserDefaultsManager::sharedManager().objectForKey(u"screens"_s).toMap();
    EXPECT_EQ(parsed(stored.value(u"Welcome"_s).toMap().value(u"json_data"_s).toString()), QVariant(welcomeJSON));
}
