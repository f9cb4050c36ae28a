// One screen's model with a scripted view: the bounded image wait and its load events, the screen
// displayed once, where each action goes (without a service, nowhere), and the social log-in.

#include "OSTModelTestSupport.h"

#include "experience/OSTAction.h"
#include "input/OSTValidationManager.h"
#include "model/OSTScreenModelDelegate.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

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

TEST(ScreenModel, EachActionReachesTheDelegateOrItsServiceAndASocialLogInWaitsForTheHost)
{
    QStringList opened;
    OSTScreenModel::SocialLogInCompletion logInAnswer;
    OSTScreenModel::AuthenticationCompletion hostAnswer;
    QList<std::pair<QVariantMap, QString>> users;
    OSTScreenModel::Environment environment;
    environment.openURL = [&](const QString &url) {
        opened << url;
        return url.startsWith(u"https:"_s);
    };
    environment.socialLogIn = [&](const QVariantMap &, auto completion) { logInAnswer = std::move(completion); };
    environment.authenticate = [&](const QVariantMap &, auto completion) { hostAnswer = std::move(completion); };
    environment.logInUser = [&](const QVariantMap &fields, const QString &userId) { users.append({fields, userId}); };
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
    withoutServices.model->handleAction(action(R"({"func": "openUrl", "params": {"url": "https://a.b", "closeSelf": 1}})"));
    EXPECT_EQ(delegate.calls, (QStringList{u"next"_s, u"previous"_s, u"close"_s, u"flow signup"_s, u"close"_s, u"next"_s}));
    EXPECT_EQ(opened, (QStringList{u"https://example.com/terms"_s, u"bad"_s}));

    const QVariantMap account{{u"email"_s, u"a@b.c"_s}};
    screen.model->handleAction(logIn);
    logInAnswer(false, account); // a failed log-in ends here
    EXPECT_FALSE(hostAnswer);
    logInAnswer(true, account);
    EXPECT_EQ(screen.overlays, QStringList{u"on"_s});
    OSTValidationResult refused;
    refused.invalidateField(u"email"_s, u"Use your work address"_s);
    hostAnswer(refused, QString());
    EXPECT_EQ(screen.errorMessage, u"Use your work address"_s) << "the host refused: the screen says why";
    screen.model->handleAction(logIn);
    logInAnswer(true, account);
    hostAnswer(std::nullopt, u"user-7"_s);
    EXPECT_EQ(screen.overlays, (QStringList{u"on"_s, u"off"_s, u"on"_s, u"off"_s}));
    EXPECT_EQ(users, (QList<std::pair<QVariantMap, QString>>{{account, u"user-7"_s}}));
    EXPECT_EQ(delegate.calls.mid(6), QStringList{u"next"_s}) << "the success action ran";
}

} // namespace
} // namespace ostrel
