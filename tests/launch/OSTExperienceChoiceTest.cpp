// Which experience the automatic presentation chooses, row by row, through the public API with the
// real user, service and experience managers against ostrel-devserver. The stand-in for the root
// controller is answered YES exactly when the chosen flow exists, as the real one answers.

#include <ostrel/Ostrel.h>

#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTExperienceManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTScriptedPresenter.h"
#include "support/OSTTestSupport.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

enum class Launch { First, Later };
enum class History { NeverLoggedIn, LoggedInNow, LoggedOutSinceLogIn };

struct Row {
    const char *name;
    Launch launch;
    bool requiresLogin;
    History history;
    QVariant showKey;
    bool presented;
    // nullopt: refused before the root controller is asked.
    std::optional<std::optional<QString>> resolvedKey;
};

void PrintTo(const Row &row, std::ostream *out)
{
    *out << row.name;
}

QVariantMap experienceWithFlows(const QStringList &keys)
{
    QVariantMap flows, metadata, screens;
    for (const QString &key : keys) {
        flows.insert(key, QVariantMap{{u"steps"_s, QVariantList{key + u"-screen"_s}}});
        metadata.insert(key + u"-screen"_s, QVariantMap{{u"json_version"_s, u"1"_s}});
        screens.insert(key + u"-screen"_s, QVariantMap{{u"labels"_s, QVariantMap()}});
    }
    return {{u"flow"_s, flows}, {u"splash"_s, screens}, {u"metadata"_s, QVariantMap{{u"splash_screen"_s, metadata}}}};
}

class ExperienceChoice : public ::testing::TestWithParam<Row> {};

} // namespace

TEST_P(ExperienceChoice, AutomaticPresentationFollowsTheRow)
{
    const Row &row = GetParam();
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    server.writeExperience(experienceWithFlows({u"install"_s, u"logged_out"_s}));
    server.writeLaunchConfiguration(row.showKey.isValid() ? QVariantMap{{u"show_key"_s, row.showKey}} : QVariantMap());
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    if (row.launch == Launch::Later)
        OSTUserDefaultsManager::sharedManager().setBool(true, u"launchedLifetime"_s);

    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    auto presenter = std::make_shared<test::OSTScriptedPresenter>();
    OSTExperienceManager::sharedManager().setPresenter(presenter);
    Ostrel::setRequiresLogin(row.requiresLogin);
    if (row.history != History::NeverLoggedIn)
        Ostrel::logInUserWithID(u"ada"_s);
    if (row.history == History::LoggedOutSinceLogIn)
        Ostrel::logOutUser();

    ASSERT_TRUE(test::launchAndWait());

    std::vector<bool> presented;
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented.push_back(shown); });
    if (row.resolvedKey) {
        ASSERT_EQ(presenter->requestedTypes.size(), 1u);
        const OSTExperienceManager &manager = OSTExperienceManager::sharedManager();
        const int type = presenter->requestedTypes.front();
        EXPECT_EQ(manager.experienceKeyForType(type), *row.resolvedKey);
        ASSERT_TRUE(presenter->last->presentCompletion) << "asked to present";
        presenter->last->presentCompletion(manager.hasExperienceType(type));
    } else {
        EXPECT_TRUE(presenter->requestedTypes.empty());
    }
    EXPECT_EQ(presented, std::vector<bool>{row.presented});
    EXPECT_EQ(Ostrel::isPresentingExperience(), row.presented);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ExperienceChoice,
    ::testing::Values(
        Row{"OverrideKeyWithCapitalsFindsNoFlow", Launch::First, false, History::NeverLoggedIn, u"Install"_s, false,
            std::optional<QString>(u"Install"_s)},
        Row{"LoginRequiredAndLoggedInIsRefused", Launch::First, true, History::LoggedInNow, {}, false, std::nullopt},
        Row{"FirstLaunchNeverLoggedInShowsInstall", Launch::First, true, History::NeverLoggedIn, {}, true,
            std::optional<QString>(u"install"_s)},
        Row{"LaterLaunchWithoutRequiredLoginShowsNothing", Launch::Later, false, History::NeverLoggedIn, {}, false,
            std::optional<QString>()},
        Row{"LoggedOutAfterALogInShowsLoggedOut", Launch::Later, true, History::LoggedOutSinceLogIn, {}, true,
            std::optional<QString>(u"logged_out"_s)},
        Row{"LaterLaunchNeverLoggedInShowsInstall", Launch::Later, true, History::NeverLoggedIn, {}, true,
            std::optional<QString>(u"install"_s)}),
    [](const ::testing::TestParamInfo<Row> &row) { return std::string(row.param.name); });

TEST(ExperienceVariables, UserPropertiesBecomeScreenVariablesUntilLogOut)
{
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    const OSTExperienceManager &experience = OSTExperienceManager::sharedManager();

    Ostrel::appendUserProperties({{u"first_name"_s, u"Ada"_s}, {u"age"_s, 36}});
    EXPECT_EQ(experience.replaceDynamicVariables(u"Hi {first_name} ({age})"_s), u"Hi Ada ({age})"_s);
    Ostrel::logOutUser();
    EXPECT_EQ(experience.replaceDynamicVariables(u"Hi {first_name}"_s), u"Hi {first_name}"_s);
}

TEST(ExperienceHosts, AQGuiApplicationHostWithoutAQuickWindowGetsNoWithOneWarningAndItsScreenInTheFingerprint)
{
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    server.writeExperience(experienceWithFlows({u"install"_s, u"logged_out"_s}));
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});

    for (const QString &order : {u"before"_s, u"after"_s}) {
        QProcess host;
        host.setProcessChannelMode(QProcess::MergedChannels);
        host.start(QStringLiteral(OSTREL_CORE_HOST_PATH), {bundle.path(), order, u"present"_s});
        ASSERT_TRUE(host.waitForFinished(60000)) << order.toStdString();
        const std::string output = order.toStdString() + ": " + QString::fromLocal8Bit(host.readAll()).toStdString();
        const QString text = QString::fromStdString(output);
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit) << output;
        EXPECT_EQ(host.exitCode(), 0) << output;
        EXPECT_TRUE(text.contains(u"presented: no"_s)) << output;
        EXPECT_EQ(text.count(u"no window to present it over"_s), 1) << output;
        // The offscreen platform's screen, not the fallback phone read before the application existed.
        const QVariantMap launch = server.recordedRequests(u"launch_v3"_s).last().parameters;
        EXPECT_NE(launch.value(u"device_resolution"_s).toString(), u"375x667"_s) << output;
        if (order == u"before"_s) {
            EXPECT_TRUE(text.contains(u"continueUserActivity was called before the application object exists"_s))
                << output;
            EXPECT_TRUE(text.contains(u"early attribution answered"_s)) << output;
        }
    }

    // A bare QWindow is no Qt Quick window: NO, with the reason.
    QProcess host;
    host.setProcessChannelMode(QProcess::MergedChannels);
    host.start(QStringLiteral(OSTREL_CORE_HOST_PATH), {bundle.path(), u"after"_s, u"present"_s, u"window"_s});
    ASSERT_TRUE(host.waitForFinished(60000));
    const QString text = QString::fromLocal8Bit(host.readAll());
    EXPECT_EQ(host.exitCode(), 0) << text.toStdString();
    EXPECT_TRUE(text.contains(u"presented: no"_s)) << text.toStdString();
    EXPECT_EQ(text.count(u"over the front-most window, a QWindow"_s), 1) << text.toStdString();
}
