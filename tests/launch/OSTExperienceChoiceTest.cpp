// Which experience the automatic presentation chooses, row by row, through the public API with the
// real user, service and experience managers against ostrel-devserver. A stand-in for the root
// controller answers YES exactly when the chosen flow exists, as the real one does.

#include <ostrel/Ostrel.h>

#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTExperienceManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Records the flow key each presentation resolves and succeeds when that flow is registered.
class FlowCheckingPresenter : public OSTExperiencePresenter {
public:
    class Presentation : public OSTExperiencePresenter::Presentation {
    public:
        Presentation(FlowCheckingPresenter &owner, int type) : m_owner(owner), m_type(type) {}
        void presentWithCompletion(Completion completion) override
        {
            const OSTExperienceManager &manager = OSTExperienceManager::sharedManager();
            m_owner.resolvedKeys.push_back(manager.experienceKeyForType(m_type));
            completion(manager.hasExperienceType(m_type));
        }
        void dismissWithCompletion(Completion completion) override { completion(true); }
        void loadWithCompletion(Completion completion) override { completion(false); }
        QWidget *takeView() override { return nullptr; }
        std::shared_ptr<const OSTScreen> currentScreen() const override { return nullptr; }

    private:
        FlowCheckingPresenter &m_owner;
        const int m_type;
    };

    std::shared_ptr<OSTExperiencePresenter::Presentation>
    presentationWithSettings(const OSTExperienceSettings &settings) override
    {
        return presentationWithType(settings.experienceType);
    }
    std::shared_ptr<OSTExperiencePresenter::Presentation> presentationWithType(int type) override
    {
        return std::make_shared<Presentation>(*this, type);
    }

    std::vector<std::optional<QString>> resolvedKeys;
};

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
    auto presenter = std::make_shared<FlowCheckingPresenter>();
    OSTExperienceManager::sharedManager().setPresenter(presenter);
    Ostrel::setRequiresLogin(row.requiresLogin);
    if (row.history != History::NeverLoggedIn)
        Ostrel::logInUserWithID(u"ada"_s);
    if (row.history == History::LoggedOutSinceLogIn)
        Ostrel::logOutUser();

    std::optional<bool> launched;
    Ostrel::executeAfterLaunch([&](bool success) { launched = success; });
    Ostrel::applicationDidFinishLaunching();
    ASSERT_TRUE(test::waitUntil([&] { return launched.has_value(); }, 30000));
    ASSERT_TRUE(*launched);

    std::vector<bool> presented;
    Ostrel::presentExperienceWithCompletion([&](bool shown) { presented.push_back(shown); });
    EXPECT_EQ(presented, std::vector<bool>{row.presented});
    EXPECT_EQ(Ostrel::isPresentingExperience(), row.presented);
    if (row.resolvedKey)
        EXPECT_EQ(presenter->resolvedKeys, std::vector<std::optional<QString>>{*row.resolvedKey});
    else
        EXPECT_TRUE(presenter->resolvedKeys.empty());
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
