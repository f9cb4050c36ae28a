// The experience manager on its own: the present, dismiss and load state machine against a
// scripted presenter, the launch response, dynamic variables, the URL hook and the delegate's
// optional callbacks. The automatic-key decision table is tested through the public API with the
// real managers (tests/launch/OSTExperienceChoiceTest.cpp).

#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlowManager.h"
#include "experience/OSTScreen.h"
#include "platform/OSTBundle.h"
#include "platform/OSTURLOpener.h"
#include "support/OSTScriptedPresenter.h"
#include "support/OSTTestSupport.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

struct UserState {
    bool loggedIn = false;
    bool requiresLogin = false;
    bool loggedInLifetime = false;
};

// Completions and what they received.
struct CompletionRecorder {
    std::vector<bool> calls;
    OSTExperienceManager::Completion completion() { return [this](bool success) { calls.push_back(success); }; }
};

QVariantMap flowsNamed(const QStringList &keys)
{
    QVariantMap flows;
    for (const QString &key : keys)
        flows.insert(key, QVariantMap{{u"steps"_s, QVariantList{u"only"_s}}});
    return flows;
}

QVariantMap launchResponse(const QStringList &flowKeys, const QVariant &showKey = {})
{
    QVariantMap response{
        {u"flow"_s, flowsNamed(flowKeys)},
        {u"splash_screen"_s, QVariantMap{{u"only"_s, QVariantMap{{u"json_data"_s, u"{}"_s}, {u"json_version"_s, u"1"_s}}}}},
    };
    if (showKey.isValid())
        response.insert(u"show_key"_s, showKey);
    return response;
}

class ExperienceManagerTest : public ::testing::Test {
protected:
    ExperienceManagerTest() : flows(OSTUserDefaultsManager::sharedManager()), manager(flows)
    {
        OSTLogging::setLoggingLevel(OSTLoggingLevelWarning);
        manager.connectUserState({.isLoggedIn = [this] { return user.loggedIn; },
                                  .requiresLogin = [this] { return user.requiresLogin; },
                                  .isLoggedInLifetime = [this] { return user.loggedInLifetime; }});
        manager.connectLaunchState({.isStartedOrLaunched = [this] { return started; },
                                    .isLaunchedLifetime = [this] { return launchedLifetime; }});
    }

    void usePresenter() { manager.setPresenter(presenter); }

    OSTFlowManager flows;
    OSTExperienceManager manager;
    UserState user;
    bool started = true;
    bool launchedLifetime = false;
    std::shared_ptr<test::OSTScriptedPresenter> presenter = std::make_shared<test::OSTScriptedPresenter>();
};

} // namespace

TEST_F(ExperienceManagerTest, LaunchResponseSetsInstallAndOverrideAndRegistersOnlyWholeDocuments)
{
    manager.processLaunchResponse(launchResponse({u"install"_s}, u"Promo"_s));
    EXPECT_TRUE(manager.isInstall());
    EXPECT_EQ(manager.experienceOverrideKey(), u"Promo"_s);
    EXPECT_TRUE(flows.hasFlowForKey(u"install"_s));

    launchedLifetime = true;
    manager.processLaunchResponse(QVariantMap{{u"flow"_s, flowsNamed({u"signup"_s})}, {u"show_key"_s, 5}});
    EXPECT_FALSE(manager.isInstall());
    EXPECT_EQ(manager.experienceOverrideKey(), std::nullopt) << "a show_key that is not a string clears it";
    EXPECT_FALSE(flows.hasFlowForKey(u"signup"_s)) << "flows without screens are not registered";

    manager.processLaunchResponse(launchResponse({}, u"x"_s));
    manager.processLaunchResponse(std::nullopt);
    EXPECT_EQ(manager.experienceOverrideKey(), std::nullopt) << "a failed launch clears the override";
    EXPECT_EQ(manager.experienceKeyForType(6), std::nullopt);
    EXPECT_FALSE(manager.hasExperienceType(-1));
}

TEST_F(ExperienceManagerTest, PresentingRefusesEarlyWithoutCallingThePresenter)
{
    usePresenter();
    CompletionRecorder completions;

    started = false;
    const QString log = test::captureStandardError(
        [&] { manager.presentExperienceWithSettings(std::nullopt, completions.completion()); });
    EXPECT_TRUE(log.contains(u"Trying to present an experience before initializing the SDK!"_s)) << log.toStdString();
    EXPECT_TRUE(completions.calls.empty()) << "no completion before the SDK is started";
    const QString loadLog = test::captureStandardError(
        [&] { manager.loadExperienceType(OSTExperienceTypeAutomatic, [](QWidget *) { ADD_FAILURE(); }); });
    EXPECT_TRUE(loadLog.contains(u"Trying to load an experience before initializing the SDK!"_s));

    // Only the automatic type is refused for a logged-in user who must log in.
    started = true;
    user = {.loggedIn = true, .requiresLogin = true};
    OSTExperienceSettings signUp;
    signUp.experienceType = OSTExperienceTypeSignUp;
    manager.presentExperienceWithSettings(signUp, completions.completion());
    EXPECT_EQ(presenter->requestedTypes, std::vector<int>{OSTExperienceTypeSignUp});
    EXPECT_TRUE(manager.isPresentingExperience());
}

TEST_F(ExperienceManagerTest, WithoutAPresenterPresentingAndLoadingFailWithAWarning)
{
    CompletionRecorder completions;
    const QString log = test::captureStandardError(
        [&] { manager.presentExperienceWithSettings(std::nullopt, completions.completion()); });
    EXPECT_TRUE(log.contains(u"Ostrel Warning: "_s)) << log.toStdString();
    EXPECT_EQ(completions.calls, std::vector<bool>{false});
    EXPECT_FALSE(manager.isPresentingExperience());

    std::vector<QWidget *> loaded;
    manager.loadExperienceType(OSTExperienceTypeInstall, [&](QWidget *widget) { loaded.push_back(widget); });
    EXPECT_EQ(loaded, std::vector<QWidget *>{nullptr});
}

TEST_F(ExperienceManagerTest, PresentDismissStateFollowsThePresentation)
{
    usePresenter();
    CompletionRecorder presented;
    CompletionRecorder dismissed;

    manager.dismissExperienceWithCompletion(dismissed.completion());
    EXPECT_EQ(dismissed.calls, std::vector<bool>{false}) << "nothing to dismiss";

    manager.presentExperienceWithSettings(std::nullopt, presented.completion());
    EXPECT_EQ(presenter->requestedTypes, std::vector<int>{OSTExperienceTypeAutomatic}) << "default settings";
    EXPECT_TRUE(manager.isPresentingExperience()) << "presenting while the presentation is under way";
    manager.dismissExperienceWithCompletion(dismissed.completion());
    EXPECT_EQ(dismissed.calls, (std::vector<bool>{false, false})) << "no current controller until shown";

    auto first = presenter->last;
    first->presentCompletion(false);
    EXPECT_EQ(presented.calls, std::vector<bool>{false});
    EXPECT_FALSE(manager.isPresentingExperience());
    EXPECT_EQ(manager.currentScreen(), nullptr);

    manager.presentExperienceWithSettings(std::nullopt, presented.completion());
    auto second = presenter->last;
    second->screen = std::make_shared<OSTScreen>(u"welcome"_s, QVariantMap(), OSTDocumentOrigin::Server);
    second->presentCompletion(true);
    EXPECT_EQ(presented.calls, (std::vector<bool>{false, true}));
    EXPECT_TRUE(manager.isPresentingExperience());
    EXPECT_EQ(manager.currentScreen(), second->screen);

    // A dismissal that reports failure still ends the presentation.
    manager.dismissExperienceWithCompletion(dismissed.completion());
    ASSERT_TRUE(second->dismissCompletion);
    second->dismissCompletion(false);
    EXPECT_EQ(dismissed.calls, (std::vector<bool>{false, false, false}));
    EXPECT_FALSE(manager.isPresentingExperience());
    EXPECT_EQ(manager.currentScreen(), nullptr);
}

TEST_F(ExperienceManagerTest, LoadingHandsOverThePreparedViewWithoutPresenting)
{
    usePresenter();
    std::vector<QWidget *> loaded;
    manager.loadExperienceType(OSTExperienceTypeLogin, [&](QWidget *widget) { loaded.push_back(widget); });
    auto presentation = presenter->last;
    presentation->loadCompletion(true);
    manager.loadExperienceType(42, [&](QWidget *widget) { loaded.push_back(widget); });
    presenter->last->loadCompletion(false);

    EXPECT_EQ(presenter->requestedTypes, (std::vector<int>{OSTExperienceTypeLogin, 42}));
    EXPECT_EQ(loaded, (std::vector<QWidget *>{&presentation->view, nullptr}));
    EXPECT_FALSE(manager.isPresentingExperience()) << "a loaded experience is not the current one";
}

TEST_F(ExperienceManagerTest, DynamicVariablesKeepStringsAndReplaceInOrderWithoutRecursion)
{
    EXPECT_EQ(manager.replaceDynamicVariables(u"{name}"_s), u"{name}"_s) << "no variables: unchanged";

    manager.appendDynamicVariables({{u"name"_s, u"Ada"_s}, {u"age"_s, 36}, {u"flag"_s, true}, {u"list"_s, QVariantList{}}});
    manager.appendDynamicVariables({{u"first_name"_s, u"Lovelace"_s}, {u"count"_s, 3}}, u"sender"_s);
    EXPECT_EQ(manager.dynamicVariables(),
              (QMap<QString, QString>{{u"name"_s, u"Ada"_s}, {u"sender.first_name"_s, u"Lovelace"_s}}));

    // "a" refers to "b", which comes later: replaced. "c" refers to "a", which came before: kept.
    manager.cleanDynamicVariables();
    manager.appendDynamicVariables({{u"a"_s, u"<{b}>"_s}, {u"b"_s, u"B"_s}, {u"c"_s, u"{a}"_s}, {u"q"_s, u"say \"hi\""_s}});
    EXPECT_EQ(manager.replaceDynamicVariables(u"{a} {b} {c} {c}{q} {unknown} {A}"_s),
              u"<B> B {a} {a}say \\\"hi\\\" {unknown} {A}"_s)
        << "values are escaped for the JSON string they land in";
    // A value replaces an earlier one; a self-reference does not loop.
    manager.appendDynamicVariables({{u"b"_s, u"{b}{b}"_s}});
    EXPECT_EQ(manager.replaceDynamicVariables(u"{b}"_s), u"{b}{b}"_s);

    manager.cleanDynamicVariables();
    EXPECT_TRUE(manager.dynamicVariables().isEmpty());
}

TEST_F(ExperienceManagerTest, OpeningAddressesGoesThroughTheURLHookOnlyForRealAddresses)
{
    std::vector<QUrl> opened;
    bool answer = true;
    OSTURLOpener::setHandler([&](const QUrl &url) {
        opened.push_back(url);
        return answer;
    });
    EXPECT_FALSE(OSTExperienceManager::openURLWithString(QString()));
    EXPECT_FALSE(OSTExperienceManager::openURLWithString(u"not an address"_s));
    EXPECT_FALSE(OSTExperienceManager::openURLWithString(u"http://exa mple.com"_s));
    EXPECT_TRUE(opened.empty());

    EXPECT_TRUE(OSTExperienceManager::openURLWithString(u"https://ostrel.example/terms"_s));
    answer = false;
    EXPECT_FALSE(OSTExperienceManager::openURLWithString(u"myapp://welcome?step=2"_s));
    EXPECT_EQ(opened, (std::vector<QUrl>{QUrl(u"https://ostrel.example/terms"_s), QUrl(u"myapp://welcome?step=2"_s)}));
    OSTURLOpener::setHandler({});
}

TEST_F(ExperienceManagerTest, StatusBarAppearanceComesFromInfoJsonWhenItIsABoolean)
{
    QTemporaryDir bundle;
    OSTBundle::setMainBundlePath(
        test::writeBundle(bundle.path(), {{u"UIViewControllerBasedStatusBarAppearance"_s, false}}));
    EXPECT_FALSE(OSTExperienceManager::usesViewControllerBasedStatusBarAppearance());
    // Read once per process.
    OSTBundle::setMainBundlePath(test::writeBundle(bundle.path() + u"/other"_s, {}));
    EXPECT_FALSE(OSTExperienceManager::usesViewControllerBasedStatusBarAppearance());
}

namespace {

// Answers unique-field validation only.
class UniqueFieldsDelegate : public OSTExperienceDelegate {
public:
    void validateUniqueFields(const QVariantMap &fields, ValidationCompletion completion) override
    {
        received = fields;
        OSTValidationResult result;
        result.invalidateField(u"email"_s);
        completion(result);
    }
    QVariantMap received;
};

} // namespace

TEST_F(ExperienceManagerTest, DelegateCallbacksReachOnlyOverridesAndAWeaklyHeldDelegate)
{
    const auto noDelegate = manager.sendToDelegate([](OSTExperienceDelegate &) { ADD_FAILURE(); });
    EXPECT_EQ(noDelegate, OSTExperienceManager::DelegateAnswer::NotImplemented);

    auto delegate = std::make_shared<UniqueFieldsDelegate>();
    manager.setExperienceDelegate(delegate);
    std::optional<OSTValidationResult> result;
    const auto validated = manager.sendToDelegate([&](OSTExperienceDelegate &d) {
        d.validateUniqueFields({{u"email"_s, u"a@b.c"_s}}, [&](const OSTValidationResult &r) { result = r; });
    });
    EXPECT_EQ(validated, OSTExperienceManager::DelegateAnswer::Answered);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->invalidFields(), QStringList{u"email"_s});
    EXPECT_EQ(delegate->received.value(u"email"_s), u"a@b.c"_s);

    bool completed = false;
    const auto logIn = manager.sendToDelegate([&](OSTExperienceDelegate &d) {
        d.logInWithFields({}, [&](const OSTValidationResult &, const QString &) { completed = true; });
    });
    EXPECT_EQ(logIn, OSTExperienceManager::DelegateAnswer::NotImplemented);
    EXPECT_FALSE(completed);
    EXPECT_EQ(manager.sendToDelegate([](OSTExperienceDelegate &d) { d.willCloseWithFields({}); }),
              OSTExperienceManager::DelegateAnswer::NotImplemented);

    delegate.reset();
    EXPECT_EQ(manager.experienceDelegate(), nullptr) << "held weakly";
}
