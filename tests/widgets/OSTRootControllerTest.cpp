#include "widgets/OSTRootController.h"

#include "core/OSTLogging.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTTestSupport.h"
#include "widgets/OSTFadingPicture.h"
#include "widgets/OSTLaunchController.h"
#include "widgets/OSTModalPresenter.h"

#include <QAbstractAnimation>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

using State = OSTViewController::AppearanceState;
using Visibility = OSTApplicationStatusBar::Visibility;

class Experience : public OSTViewController {
public:
    bool hidesStatusBar = false;
    bool prefersStatusBarHidden() const override { return hidesStatusBar; }
};

// The SDK's side of a root controller: a launch finished when the test says so, an experience
// built on request (counted), and the answers the controller gives.
struct Sdk {
    QList<std::function<void(bool)>> waiting;
    int calls = 0;
    bool empty = false;
    bool hidesStatusBar = false;
    QPointer<Experience> made;
    QList<bool> answers;

    OSTRootController::LaunchWaiter waiter()
    {
        return [this](std::function<void(bool)> block) { waiting.append(std::move(block)); };
    }
    void finishLaunch(bool started)
    {
        const auto blocks = std::exchange(waiting, {});
        for (const auto &block : blocks)
            block(started);
    }
    OSTRootController::ChildFactory make()
    {
        return [this](QSizeF, OSTRootController::Delivery deliver) {
            ++calls;
            if (empty) {
                deliver(nullptr);
                return;
            }
            made = new Experience;
            made->hidesStatusBar = hidesStatusBar;
            deliver(made.data());
        };
    }
    OSTRootController::Completion record()
    {
        return [this](bool success) { answers.append(success); };
    }
    // A root controller presenting over `window` (none: the front-most) that waits for this launch.
    std::unique_ptr<OSTRootController> root(QWidget *window, OSTAnimation animation)
    {
        auto controller = std::make_unique<OSTRootController>(make(), OSTRootController::PresentationOptions{
                                                                          window, animation, animation});
        controller->setLaunchWaiter(waiter());
        return controller;
    }
};

struct Host {
    QTemporaryDir bundleFolder;
    QWidget window;

    explicit Host(QSize size = {360, 640}, const QVariantMap &info = {})
    {
        OSTBundle::setMainBundlePath(test::writeBundle(bundleFolder.path(), info));
        window.resize(size);
        window.show();
    }
};

void finish(QAbstractAnimation *animation)
{
    ASSERT_NE(animation, nullptr);
    animation->setCurrentTime(animation->totalDuration());
}

void becomeActive()
{
    OSTNotificationCenter::defaultCenter().post(OSTApplicationDidBecomeActiveNotification);
}

// The launch-cover tests need a process in which the application has not become active yet;
// CTest gives every test its own.
void expectStillStarting()
{
    ASSERT_FALSE(OSTApplication::hasBecomeActiveOnce()) << "run this test in a process of its own";
}

void runPostedWork()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

TEST(RootController, OnceActiveTheExperienceIsPresentedDirectlyAndDismissedOnce)
{
    EXPECT_FALSE(OSTApplication::hasBecomeActiveOnce()) << "the application is still starting";
    becomeActive();
    EXPECT_TRUE(OSTApplication::hasBecomeActiveOnce());

    Host host;
    Sdk sdk;
    const auto root = sdk.root(nullptr, OSTAnimation::Immediate);
    root->present(sdk.record());
    EXPECT_EQ(sdk.calls, 0) << "nothing is built before the launch has finished";
    sdk.finishLaunch(true);

    EXPECT_EQ(sdk.answers, QList<bool>{true});
    EXPECT_EQ(root->launchController(), nullptr);
    ASSERT_NE(sdk.made, nullptr);
    EXPECT_EQ(root->childViewController(), sdk.made.data());
    EXPECT_EQ(root->view()->parentWidget(), &host.window);
    EXPECT_EQ(root->view()->geometry(), host.window.rect());
    EXPECT_EQ(sdk.made->appearanceState(), State::Appeared);

    root->present(sdk.record());
    EXPECT_EQ(sdk.answers, (QList<bool>{true, false})) << "presenting twice is refused";
    EXPECT_EQ(sdk.calls, 1);

    root->dismiss(sdk.record());
    EXPECT_EQ(sdk.answers, (QList<bool>{true, false, true}));
    EXPECT_EQ(root->view()->parentWidget(), nullptr);
    EXPECT_EQ(sdk.made->appearanceState(), State::Disappeared);
}

TEST(RootController, WhileStartingTheLaunchCoverIsShownThenCrossFadesToTheExperience)
{
    expectStillStarting();
    Host host;
    Sdk sdk;
    const auto root = sdk.root(&host.window, OSTAnimation::Animated);

    root->present(sdk.record());
    ASSERT_NE(root->launchController(), nullptr);
    ASSERT_NE(root->launchSnapshot(), nullptr);
    EXPECT_EQ(root->launchSnapshot()->parentWidget(), &host.window);
    EXPECT_EQ(root->launchSnapshot()->geometry(), host.window.rect());
    EXPECT_EQ(root->launchSnapshot()->grab().toImage().pixelColor(10, 10), QColor(Qt::black));
    EXPECT_FALSE(root->isViewLoaded() && root->view()->isVisible()) << "the cover itself comes on the next turn";

    QCoreApplication::processEvents();
    EXPECT_EQ(root->launchSnapshot(), nullptr);
    EXPECT_EQ(root->view()->parentWidget(), &host.window);
    EXPECT_EQ(root->childViewController(), root->launchController());
    EXPECT_EQ(root->presenter()->runningTransition(), nullptr) << "the cover is presented without animation";
    EXPECT_TRUE(sdk.answers.isEmpty());
    EXPECT_EQ(sdk.calls, 0);

    QPointer<OSTLaunchController> cover = root->launchController();
    sdk.finishLaunch(true);
    ASSERT_NE(sdk.made, nullptr);
    ASSERT_NE(root->runningCrossFade(), nullptr);
    EXPECT_EQ(cover->appearanceState(), State::Disappearing);
    EXPECT_EQ(sdk.made->appearanceState(), State::Appearing);
    auto *fadeIn = root->view()->findChild<OSTFadingPicture *>();
    ASSERT_NE(fadeIn, nullptr) << "the experience fades in as a picture of itself";
    EXPECT_DOUBLE_EQ(fadeIn->opacity(), 0.0);
    EXPECT_EQ(fadeIn->geometry(), root->view()->rect());
    EXPECT_TRUE(sdk.answers.isEmpty());

    finish(root->runningCrossFade());
    runPostedWork();
    EXPECT_EQ(sdk.answers, QList<bool>{true});
    EXPECT_TRUE(cover.isNull()) << "the cover goes once the experience is up";
    EXPECT_EQ(root->childViewController(), sdk.made.data());
    EXPECT_EQ(sdk.made->appearanceState(), State::Appeared);
    EXPECT_EQ(root->view()->findChild<OSTFadingPicture *>(), nullptr);
    EXPECT_TRUE(sdk.made->view()->isVisible());
    EXPECT_FALSE(sdk.made->view()->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST(RootController, FailuresAnswerFalseAndTakeTheCoverAway)
{
    expectStillStarting();
    Host host;
    for (const bool launchFailed : {true, false}) {
        const char *name = launchFailed ? "launch failed" : "nothing to show";
        Sdk sdk;
        sdk.empty = !launchFailed;
        const auto root = sdk.root(&host.window, OSTAnimation::Animated);
        root->present(sdk.record());
        QCoreApplication::processEvents();
        sdk.finishLaunch(!launchFailed);
        EXPECT_EQ(sdk.answers, QList<bool>{false}) << name;
        finish(root->presenter()->runningTransition());
        EXPECT_EQ(root->view()->parentWidget(), nullptr) << name << ": the cover is dismissed";
    }

    Sdk sdk;
    OSTRootController loadOnly(sdk.make());
    loadOnly.present(sdk.record());
    EXPECT_EQ(sdk.answers, QList<bool>{false}) << "no settings, no presentation";
    loadOnly.dismiss(sdk.record());
    EXPECT_EQ(sdk.answers, (QList<bool>{false, false, true})) << "dismissing without a child answers twice";
}

TEST(RootController, DismissalOrDeletionWhileWaitingForTheLaunchDropsTheWork)
{
    expectStillStarting();
    Host host;
    Sdk sdk;
    {
        const auto root = sdk.root(&host.window, OSTAnimation::Immediate);
        root->present(sdk.record());
        root->dismiss(sdk.record());
        EXPECT_EQ(root->launchSnapshot(), nullptr);
        QCoreApplication::processEvents();
        sdk.finishLaunch(true);
        EXPECT_EQ(sdk.calls, 0) << "a dismissed presentation builds nothing";
        EXPECT_EQ(root->view()->parentWidget(), nullptr);
    }
    EXPECT_EQ(sdk.answers, (QList<bool>{false, true, false}));

    sdk.root(&host.window, OSTAnimation::Immediate)->load(sdk.record()); // deleted at once
    sdk.finishLaunch(true);
    EXPECT_EQ(sdk.calls, 0) << "work for a deleted controller is dropped";

    OSTRootController loaded(sdk.make());
    loaded.setLaunchWaiter(sdk.waiter());
    loaded.load(sdk.record());
    sdk.finishLaunch(true);
    EXPECT_EQ(sdk.answers.last(), true);
    ASSERT_NE(sdk.made, nullptr);
    EXPECT_EQ(sdk.made->parentController(), &loaded);
    EXPECT_EQ(sdk.made->view()->parentWidget(), loaded.view());
    EXPECT_EQ(loaded.view()->parentWidget(), nullptr) << "loading does not present";
}

TEST(RootController, TheStatusBarIsPutBackAsItWas)
{
    becomeActive();
    OSTApplicationStatusBar &statusBar = OSTApplicationStatusBar::sharedStatusBar();
    // Any number counts, as a property list's booleans are numbers.
    for (const QVariant &value : {QVariant(true), QVariant(false), QVariant(1), QVariant(0.0)}) {
        const bool controllerBased = value.toBool();
        Host host({360, 640}, {{u"UIViewControllerBasedStatusBarAppearance"_s, value}});
        statusBar.setVisibility(Visibility::Shown, OSTAnimation::Immediate);
        statusBar.setStyle(OSTStatusBarStyle::LightContent, OSTAnimation::Immediate);
        Sdk sdk;
        sdk.hidesStatusBar = true;
        const auto root = sdk.root(nullptr, OSTAnimation::Immediate);
        root->present(nullptr);
        sdk.finishLaunch(true);
        EXPECT_EQ(statusBar.visibility(), controllerBased ? Visibility::Hidden : Visibility::Shown);
        if (controllerBased) {
            sdk.made->hidesStatusBar = false;
            sdk.made->setNeedsStatusBarAppearanceUpdate();
            EXPECT_EQ(statusBar.visibility(), Visibility::Shown) << "the experience's wishes are followed";
            sdk.made->hidesStatusBar = true;
            sdk.made->setNeedsStatusBarAppearanceUpdate();
        } else {
            statusBar.setVisibility(Visibility::Hidden, OSTAnimation::Immediate);
        }
        statusBar.setStyle(OSTStatusBarStyle::Default, OSTAnimation::Immediate);
        root->dismiss(nullptr);
        EXPECT_EQ(statusBar.visibility(), Visibility::Shown);
        EXPECT_EQ(statusBar.style(), OSTStatusBarStyle::LightContent);
    }
}

TEST(RootController, PresentingOverALandscapeWindowWarnsOncePerProcessAndCarriesOn)
{
    becomeActive();
    OSTLogging::setLoggingLevel(2);
    const QString warning = u"Presenting experience in landscape orientation, which is currently not supported by the SDK."_s;
    const std::pair<QSize, bool> presentations[] = {
        {QSize(400, 800), false}, {QSize(800, 400), true}, {QSize(900, 300), false}};
    for (const auto &[size, warns] : presentations) {
        Host host(size);
        Sdk sdk;
        const auto root = sdk.root(&host.window, OSTAnimation::Immediate);
        root->present(sdk.record());
        const QString log = test::captureStandardError([&] { sdk.finishLaunch(true); });
        EXPECT_EQ(log.contains(warning), warns) << size.width() << "x" << size.height() << ": " << log.toStdString();
        EXPECT_EQ(sdk.answers, QList<bool>{true});
    }
}
