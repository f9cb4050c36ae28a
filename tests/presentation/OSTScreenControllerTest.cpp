// The screen controller against the development service: loading with served, delayed and broken
// screens, the events it reports, and where each button's action goes.

#include "OSTScreenTestSupport.h"

#include "presentation/OSTScreenController.h"
#include "presentation/OSTScreenControllerDelegate.h"
#include "render/OSTLoadingOverlay.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include "../render/OSTPixelTestSupport.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::screenWithJson;

class RecordingControllerDelegate final : public OSTScreenControllerDelegate {
public:
    void screenControllerShouldClose(OSTScreenController &) override { calls << u"close"_s; }
    void screenControllerShouldGoToNextScreen(OSTScreenController &) override { calls << u"next"_s; }
    void screenControllerShouldGoToPreviousScreen(OSTScreenController &) override { calls << u"previous"_s; }
    void screenControllerShouldStartFlow(OSTScreenController &, const QString &flowKey) override
    {
        calls << u"flow "_s + flowKey;
    }
    QStringList calls;
};

QString screenWithRequiredImage(const QUrl &service, const QString &imageName)
{
    return uR"({"images": {"logo": {"x": "10", "y": "10", "width": "50", "height": "50",
                                    "image": "%1/images/%2", "required": "true"}}})"_s
        .arg(service.toString(), imageName);
}

struct LoadOutcome {
    bool called = false;
    std::unique_ptr<OSTScreenController> controller;
};

OSTScreenController::Completion recordInto(LoadOutcome &outcome)
{
    return [&outcome](OSTScreenController *controller) {
        EXPECT_FALSE(outcome.called) << "the completion fires once";
        outcome.called = true;
        outcome.controller.reset(controller);
    };
}

class ScreenControllerAgainstService : public ::testing::Test {
protected:
    void startService(const QStringList &faults = {})
    {
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
        m_server.writeImage(u"logo.png"_s, test::pngOf(test::imageOfColor(Qt::red)));
        m_server.writeImage(u"slow.png"_s, test::pngOf(test::imageOfColor(Qt::red)));
        ASSERT_TRUE(m_server.start({.faults = faults}));
    }
    test::OSTDevServerProcess m_server;
    test::OSTEventRecorder m_events;
};

TEST_F(ScreenControllerAgainstService, ServedImagesLoadFullyAndTheScreenIsReportedDisplayedOnce)
{
    startService();
    LoadOutcome outcome;
    OSTScreenController::controllerWithScreen(screenWithJson(screenWithRequiredImage(m_server.serviceURL(), u"logo.png"_s)),
                                              {}, recordInto(outcome));
    EXPECT_FALSE(outcome.called);
    ASSERT_TRUE(test::waitUntil([&] { return outcome.called; }));
    ASSERT_TRUE(outcome.controller);
    EXPECT_TRUE(outcome.controller->screenView()->isFullyLoaded());

    const auto loads = m_events.statistics(u"screen_load"_s);
    ASSERT_EQ(loads.size(), 1u);
    EXPECT_EQ(loads.front().value(u"fully_loaded"_s), true);
    EXPECT_EQ(loads.front().value(u"type"_s), u"success"_s);
    EXPECT_GE(loads.front().value(u"timing"_s).toDouble(), 0.0);

    OSTScreenController &controller = *outcome.controller;
    for (int round = 0; round < 2; ++round) {
        controller.beginAppearanceTransition(OSTViewController::Transition::Appear, OSTAnimation::Immediate);
        controller.endAppearanceTransition();
        controller.beginAppearanceTransition(OSTViewController::Transition::Disappear, OSTAnimation::Immediate);
        controller.endAppearanceTransition();
    }
    EXPECT_EQ(m_events.parametersOf(u"OST Welcome Displayed"_s).size(), 1u);
}

TEST_F(ScreenControllerAgainstService, ImagesDelayedBeyondTheWaitShowTheScreenAnywayAsPartlyLoaded)
{
    startService({u"images:delay=60"_s});
    test::ManualClockScope time;
    LoadOutcome outcome;
    OSTScreenController::controllerWithScreen(screenWithJson(screenWithRequiredImage(m_server.serviceURL(), u"slow.png"_s)),
                                              {}, recordInto(outcome));
    time.advance(OSTScreenController::requiredImageWait - 0.5);
    EXPECT_FALSE(outcome.called);
    time.advance(0.5);
    ASSERT_TRUE(outcome.called);
    ASSERT_TRUE(outcome.controller);
    EXPECT_FALSE(outcome.controller->screenView()->isFullyLoaded());
    const auto loads = m_events.statistics(u"screen_load"_s);
    ASSERT_EQ(loads.size(), 1u);
    EXPECT_EQ(loads.front().value(u"fully_loaded"_s), false);
    EXPECT_EQ(loads.front().value(u"type"_s), u"timeout"_s);
    EXPECT_DOUBLE_EQ(loads.front().value(u"timing"_s).toDouble(), OSTScreenController::requiredImageWait);
}

TEST(ScreenController, ScreensThatDoNotBuildFailOnceWithALoadEventAndNoController)
{
    test::OSTEventRecorder events;
    EXPECT_EQ(OSTScreenController::controllerWithScreen(screenWithJson(u"{not json"_s), {}), nullptr);
    LoadOutcome outcome;
    OSTScreenController::controllerWithScreen(screenWithJson(u"[]"_s), {}, recordInto(outcome));
    EXPECT_TRUE(outcome.called);
    EXPECT_FALSE(outcome.controller);
    const auto loads = events.statistics(u"screen_load"_s);
    ASSERT_EQ(loads.size(), 2u);
    for (const QVariantMap &load : loads) {
        EXPECT_EQ(load.value(u"type"_s), u"failure"_s);
        EXPECT_EQ(load.value(u"fully_loaded"_s), false);
    }
    // A screen without required images is ready at once.
    LoadOutcome ready;
    OSTScreenController::controllerWithScreen(screenWithJson(u"{}"_s), {}, recordInto(ready));
    EXPECT_TRUE(ready.controller);
}

TEST(ScreenController, StatusBarStyleFollowsTheScreen)
{
    struct Case {
        const char *style;
        bool hidden;
        OSTStatusBarStyle look;
    } const cases[] = {
        {R"({"statusBarStyle": "disabled"})", true, OSTStatusBarStyle::Default},
        {R"({"statusBarStyle": "white"})", false, OSTStatusBarStyle::LightContent},
        {R"({"statusBarStyle": "purple"})", false, OSTStatusBarStyle::Default},
        {R"({"statusBarStyle": 1})", false, OSTStatusBarStyle::Default},
        {"{}", false, OSTStatusBarStyle::Default},
    };
    for (const Case &c : cases) {
        std::unique_ptr<OSTScreenController> controller(
            OSTScreenController::controllerWithScreen(screenWithJson(QString::fromUtf8(c.style)), {}));
        ASSERT_TRUE(controller) << c.style;
        EXPECT_EQ(controller->prefersStatusBarHidden(), c.hidden) << c.style;
        EXPECT_EQ(controller->preferredStatusBarStyle(), c.look) << c.style;
        EXPECT_EQ(controller->view(), controller->screenView());
    }
}

QString buttonScreen()
{
    QString buttons;
    const QStringList actions = {
        uR"({"func": "next"})"_s,
        uR"({"func": "previous"})"_s,
        uR"({"func": "close"})"_s,
        uR"({"func": "startFlow", "params": {"flowName": "SignUp"}})"_s,
        uR"({"func": "startFlow"})"_s,
        uR"({"func": "openUrl", "params": {"url": "https://example.com/terms", "closeSelf": 1}})"_s,
        uR"({"func": "openUrl", "params": {"url": "bad"}})"_s,
        uR"({"func": "loginFacebook", "params": {"successAction": {"func": "next"}}})"_s,
    };
    for (int index = 0; index < actions.size(); ++index) {
        buttons += uR"(%1"b%2": {"x": "0", "y": "%3", "width": "100", "height": "30",
                     "states": {"normal": {"text": "b%2"}}, "onClick": %4})"_s
                       .arg(index ? u","_s : QString())
                       .arg(index)
                       .arg(index * 40)
                       .arg(actions.at(index));
    }
    return uR"({"buttons": {%1}})"_s.arg(buttons);
}

TEST(ScreenController, EachButtonsActionReachesTheDelegateOrItsService)
{
    test::OSTEventRecorder events;
    QStringList opened;
    QList<QVariantMap> loggedIn;
    OSTScreenController::SocialLogInCompletion pendingLogIn;
    OSTScreenController::Environment environment;
    environment.openURL = [&](const QString &url) {
        opened << url;
        return url.startsWith(u"https:"_s);
    };
    std::unique_ptr<OSTScreenController> controller(
        OSTScreenController::controllerWithScreen(screenWithJson(buttonScreen()), environment));
    ASSERT_TRUE(controller);
    RecordingControllerDelegate delegate;
    controller->setDelegate(&delegate);
    controller->view()->show();
    const auto press = [&](int index) {
        QTest::mouseClick(controller->screenView()->views().value(u"b%1"_s.arg(index)), Qt::LeftButton);
    };
    for (int index = 0; index < 8; ++index)
        press(index);
    // Without a social log-in adapter the log-in button does nothing.
    EXPECT_EQ(delegate.calls, (QStringList{u"next"_s, u"previous"_s, u"close"_s, u"flow signup"_s, u"close"_s}));
    EXPECT_EQ(opened, (QStringList{u"https://example.com/terms"_s, u"bad"_s}));
    EXPECT_EQ(events.parametersOf(u"OST Welcome Action Tapped"_s).size(), 8u);
}

TEST(ScreenController, SocialLogInCoversTheScreenWhileTheHostChecksThenRunsTheSuccessAction)
{
    OSTScreenController::SocialLogInCompletion logInAnswer;
    OSTScreenController::AuthenticationCompletion hostAnswer;
    QList<std::pair<QVariantMap, QString>> users;
    OSTScreenController::Environment environment;
    environment.socialLogIn = [&](const QVariantMap &, OSTScreenController::SocialLogInCompletion completion) {
        logInAnswer = std::move(completion);
    };
    environment.authenticate = [&](const QVariantMap &, OSTScreenController::AuthenticationCompletion completion) {
        hostAnswer = std::move(completion);
    };
    environment.logInUser = [&](const QVariantMap &fields, const QString &userId) { users.append({fields, userId}); };
    std::unique_ptr<OSTScreenController> controller(
        OSTScreenController::controllerWithScreen(screenWithJson(buttonScreen()), environment));
    ASSERT_TRUE(controller);
    RecordingControllerDelegate delegate;
    controller->setDelegate(&delegate);
    controller->view()->show();
    QTest::mouseClick(controller->screenView()->views().value(u"b7"_s), Qt::LeftButton);
    ASSERT_TRUE(logInAnswer);

    logInAnswer(false, {{u"email"_s, u"a@b.c"_s}}); // a failed log-in ends here
    EXPECT_FALSE(hostAnswer);
    logInAnswer(true, {{u"email"_s, u"a@b.c"_s}});
    ASSERT_TRUE(hostAnswer);
    const auto overlays = controller->view()->findChildren<OSTLoadingOverlay *>();
    ASSERT_EQ(overlays.size(), 1);
    EXPECT_TRUE(overlays.front()->isPresented());
    EXPECT_TRUE(delegate.calls.isEmpty());

    hostAnswer(std::nullopt, u"user-7"_s);
    EXPECT_FALSE(overlays.front()->isPresented());
    ASSERT_EQ(users.size(), 1);
    EXPECT_EQ(users.front().second, u"user-7"_s);
    EXPECT_EQ(users.front().first.value(u"email"_s), u"a@b.c"_s);
    EXPECT_EQ(delegate.calls, QStringList{u"next"_s});
}

} // namespace
} // namespace ostrel
