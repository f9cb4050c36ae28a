// One screen's model with a scripted view: the bounded image wait and its load events, the screen
// displayed once, where each action goes (without a service, nowhere), and the social log-in
// through the experience's services: the host's check answered at once, or from another thread
// twice, of which the first answer counts.

#include "OSTModelTestSupport.h"

#include "experience/OSTAction.h"
#include "experience/OSTExperienceManager.h"
#include "model/OSTScreenEnvironment.h"
#include "model/OSTScreenModelDelegate.h"
#include "model/OSTValidationManager.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>

#include <gtest/gtest.h>

#include <thread>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

// A screen called "welcome" (named "Welcome") with `json` as its screen JSON.
std::shared_ptr<const OSTScreen> screenWithJson(const QString &json)
{
    return std::make_shared<const OSTScreen>(
        u"welcome"_s, QVariantMap{{u"json_data"_s, json}, {u"experience_name"_s, u"Welcome"_s}}, OSTDocumentOrigin::Server);
}

std::shared_ptr<const OSTAction> action(const char *json)
{
    return std::make_shared<const OSTAction>(test::jsonObject(json));
}

class RecordingDelegate final : public OSTScreenModelDelegate {
public:
    void screenModelShouldClose(OSTScreenModel &) override { calls << u"close"_s; }
    void screenModelShouldGoToNextScreen(OSTScreenModel &) override { calls << u"next"_s; }
    void screenModelShouldGoToPreviousScreen(OSTScreenModel &) override { calls << u"previous"_s; }
    void screenModelShouldStartFlow(OSTScreenModel &, const QString &flowKey) override { calls << u"flow "_s + flowKey; }
    QStringList calls;
};

TEST(ScreenModel, TheImageWaitIsBoundedAndTheLoadAndTheDisplayAreReportedOnce)
{
    test::ManualClockScope time;
    test::OSTEventRecorder events;
    int ready = 0;
    test::ScriptedScreen slow(screenWithJson(u"{}"_s), {});
    test::ScriptedScreen fast(screenWithJson(u"{}"_s), {});
    for (test::ScriptedScreen *screen : {&slow, &fast}) {
        screen->fullyLoaded = false;
        screen->model->beginLoading();
        screen->model->waitForRequiredImages([&] { ++ready; });
    }
    time.advance(1);
    fast.fullyLoaded = true;
    fast.model->requiredImagesDidFinishLoading();
    time.advance(OSTScreenModel::requiredImageWait - 1.5);
    EXPECT_EQ(ready, 1);
    time.advance(0.5);
    slow.model->requiredImagesDidFinishLoading();
    EXPECT_EQ(ready, 2) << "the screen shows without the images still out, once";
    fast.model->screenDidAppear();
    fast.model->screenDidAppear();

    QStringList loads;
    for (const QVariantMap &load : events.statistics(u"screen_load"_s))
        loads << u"%1 %2 %3"_s.arg(load.value(u"type"_s).toString(), load.value(u"fully_loaded"_s).toString(),
                                   load.value(u"timing"_s).toString());
    EXPECT_EQ(loads, (QStringList{u"success true 1"_s, u"timeout false 3"_s}));
    EXPECT_EQ(events.parametersOf(u"OST Welcome Displayed"_s).size(), 1u);
}

// A host that answers its social log-in check twice from another thread: `first`, then a plain yes.
class SocialLogInHost final : public OSTExperienceDelegate {
public:
    void authenticateFacebookWithFields(const QVariantMap &, AuthenticationCompletion completion) override
    {
        std::thread([this, completion] {
            completion(first, u"user-7"_s);
            completion(OSTValidationResult(), u"someone-else"_s);
        }).join();
    }
    OSTValidationResult first;
};

TEST(ScreenModel, EachActionReachesTheDelegateOrItsServiceAndASocialLogInWaitsForTheHost)
{
    QStringList opened;
    OSTScreenModel::SocialLogInCompletion logInAnswer;
    // The experience's own services, but for the social log-in adapter and the address opener.
    OSTScreenModel::Environment environment = OSTScreenEnvironment::forExperience({375, 667});
    environment.openURL = [&](const QString &url) {
        opened << url;
        return url.startsWith(u"https:"_s);
    };
    environment.socialLogIn = [&](const QVariantMap &, auto completion) { logInAnswer = std::move(completion); };
    test::ScriptedScreen screen(screenWithJson(uR"({"inputs": {"email": {}}})"_s), environment);
    test::ScriptedScreen withoutServices(screenWithJson(u"{}"_s), {});
    const auto manager = std::make_shared<OSTValidationManager>(); // the flow's, kept by the experience
    screen.model->setValidationManager(manager);
    RecordingDelegate delegate;
    screen.model->setDelegate(&delegate);
    withoutServices.model->setDelegate(&delegate);
    for (const char *json : {R"({"func": "next"})", R"({"func": "previous"})", R"({"func": "close"})",
                             R"({"func": "startFlow", "params": {"flowName": "SignUp"}})", R"({"func": "startFlow"})",
                             R"({"func": "openUrl", "params": {"url": "https://example.com/terms", "closeSelf": 1}})",
                             R"({"func": "openUrl", "params": {"url": "bad", "closeSelf": 1}})", "{}"})
        screen.model->handleAction(action(json));
    screen.model->goToNextScreen();
    const auto logIn = action(R"({"func": "loginFacebook", "params": {"successAction": {"func": "next"}}})");
    withoutServices.model->handleAction(logIn);
    EXPECT_EQ(delegate.calls, (QStringList{u"next"_s, u"previous"_s, u"close"_s, u"flow signup"_s, u"close"_s, u"next"_s}));
    EXPECT_EQ(opened, (QStringList{u"https://example.com/terms"_s, u"bad"_s}));

    // A host without a check of its own takes the account as it is, at once.
    const QVariantMap account{{u"email"_s, u"a@b.c"_s}};
    screen.model->handleAction(logIn);
    logInAnswer(false, account); // a failed log-in ends here
    logInAnswer(true, account);
    EXPECT_TRUE(OSTUserManager::sharedManager().isLoggedIn());
    EXPECT_EQ(screen.overlays, QStringList{u"off"_s}) << "no overlay for an answer given at once";

    // A host that checks: the screen is covered until its first answer reaches the GUI thread.
    const auto host = std::make_shared<SocialLogInHost>();
    OSTExperienceManager::sharedManager().setExperienceDelegate(host);
    host->first.invalidateField(u"email"_s, u"Use your work address"_s);
    for (int round = 0; round < 2; ++round) {
        screen.model->handleAction(logIn);
        logInAnswer(true, account);
        QCoreApplication::processEvents();
        host->first = OSTValidationResult();
    }
    EXPECT_EQ(screen.errorMessage, u"Use your work address"_s) << "the first round was refused";
    EXPECT_EQ(screen.overlays, (QStringList{u"off"_s, u"on"_s, u"off"_s, u"on"_s, u"off"_s}));
    EXPECT_EQ(OSTUserManager::sharedManager().currentUser().userID(), u"user-7"_s);
    EXPECT_EQ(OSTUserManager::sharedManager().currentUser().properties().value(u"email"_s), u"a@b.c"_s);
    EXPECT_EQ(delegate.calls.mid(6), (QStringList{u"next"_s, u"next"_s})) << "each accepted log-in ran its success action";
}

} // namespace
} // namespace ostrel
