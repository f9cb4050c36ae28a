#include "presentation/OSTRootController.h"

#include "core/OSTLogging.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTNotificationCenter.h"
#include "platform/ui/OSTFadingPicture.h"
#include "platform/ui/OSTModalPresenter.h"
#include "presentation/OSTLaunchController.h"
#include "support/OSTTestSupport.h"

#include <QAbstractAnimation>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QTemporaryDir>

#include <gtest/gtest.h>

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

// The SDK's launch, finished when the test says so.
struct Launch {
    QList<std::function<void(bool)>> waiting;
    OSTRootController::LaunchWaiter waiter()
    {
        return [this](std::function<void(bool)> block) { waiting.append(std::move(block)); };
    }
    void finish(bool started)
    {
        const auto blocks = std::exchange(waiting, {});
        for (const auto &block : blocks)
            block(started);
    }
};

// Builds the experience on request and remembers how often it was asked.
struct Factory {
    int calls = 0;
    bool empty = false;
    bool hidesStatusBar = false;
    QPointer<Experience> made;
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
};

struct Answers {
    QList<bool> values;
    OSTRootController::Completion record()
    {
        return [this](bool success) { values.append(success); };
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

OSTRootController::PresentationOptions options(QWidget *window, OSTAnimation animation)
{
    return {window, animation, animation};
}

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
    ASSERT_FALSE(OSTRootController::applicationHasBecomeActive()) << "run this test in a process of its own";
}

void runPostedWork()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

TEST(RootController, OnceActiveTheExperienceIsPresentedDirectlyAndDismissedOnce)
{
    EXPECT_FALSE(OSTRootController::applicationHasBecomeActive()) << "the application is still starting";
    becomeActive();
    EXPECT_TRUE(OSTRootController::applicationHasBecomeActive());

    Host host;
    Launch launch;
    Factory factory;
    Answers answers;
    OSTRootController root(factory.make(), options(nullptr, OSTAnimation::Immediate));
    root.setLaunchWaiter(launch.waiter());
    root.present(answers.record());
    EXPECT_EQ(factory.calls, 0) << "nothing is built before the launch has finished";
    launch.finish(true);

    EXPECT_EQ(answers.values, QList<bool>{true});
    EXPECT_EQ(root.launchController(), nullptr);
    ASSERT_NE(factory.made, nullptr);
    EXPECT_EQ(root.childViewController(), factory.made.data());
    EXPECT_EQ(root.view()->parentWidget(), &host.window);
    EXPECT_EQ(root.view()->geometry(), host.window.rect());
    EXPECT_EQ(factory.made->appearanceState(), State::Appeared);

    root.present(answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{true, false})) << "presenting twice is refused";
    EXPECT_EQ(factory.calls, 1);

    root.dismiss(answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{true, false, true}));
    EXPECT_EQ(root.view()->parentWidget(), nullptr);
    EXPECT_EQ(factory.made->appearanceState(), State::Disappeared);
}

TEST(RootController, WhileStartingTheLaunchCoverIsShownThenCrossFadesToTheExperience)
{
    expectStillStarting();
    Host host;
    Launch launch;
    Factory factory;
    Answers answers;
    OSTRootController root(factory.make(), options(&host.window, OSTAnimation::Animated));
    root.setLaunchWaiter(launch.waiter());

    root.present(answers.record());
    ASSERT_NE(root.launchController(), nullptr);
    ASSERT_NE(root.launchSnapshot(), nullptr);
    EXPECT_EQ(root.launchSnapshot()->parentWidget(), &host.window);
    EXPECT_EQ(root.launchSnapshot()->geometry(), host.window.rect());
    EXPECT_EQ(root.launchSnapshot()->grab().toImage().pixelColor(10, 10), QColor(Qt::black));
    EXPECT_FALSE(root.isViewLoaded() && root.view()->isVisible()) << "the cover itself comes on the next turn";

    QCoreApplication::processEvents();
    EXPECT_EQ(root.launchSnapshot(), nullptr);
    EXPECT_EQ(root.view()->parentWidget(), &host.window);
    EXPECT_EQ(root.childViewController(), root.launchController());
    EXPECT_EQ(root.presenter()->runningTransition(), nullptr) << "the cover is presented without animation";
    EXPECT_TRUE(answers.values.isEmpty());
    EXPECT_EQ(factory.calls, 0);

    QPointer<OSTLaunchController> cover = root.launchController();
    launch.finish(true);
    ASSERT_NE(factory.made, nullptr);
    ASSERT_NE(root.runningCrossFade(), nullptr);
    EXPECT_EQ(root.runningCrossFade()->totalDuration(), 250);
    EXPECT_EQ(cover->appearanceState(), State::Disappearing);
    EXPECT_EQ(factory.made->appearanceState(), State::Appearing);
    auto *fadeIn = root.view()->findChild<OSTFadingPicture *>();
    ASSERT_NE(fadeIn, nullptr) << "the experience fades in as a picture of itself";
    EXPECT_DOUBLE_EQ(fadeIn->opacity(), 0.0);
    EXPECT_EQ(fadeIn->geometry(), root.view()->rect());
    EXPECT_TRUE(answers.values.isEmpty());

    finish(root.runningCrossFade());
    runPostedWork();
    EXPECT_EQ(answers.values, QList<bool>{true});
    EXPECT_TRUE(cover.isNull()) << "the cover goes once the experience is up";
    EXPECT_EQ(root.childViewController(), factory.made.data());
    EXPECT_EQ(factory.made->appearanceState(), State::Appeared);
    EXPECT_EQ(root.view()->findChild<OSTFadingPicture *>(), nullptr);
    EXPECT_TRUE(factory.made->view()->isVisible());
    EXPECT_FALSE(factory.made->view()->testAttribute(Qt::WA_TransparentForMouseEvents));
}

TEST(RootController, FailuresAnswerFalseAndTakeTheCoverAway)
{
    expectStillStarting();
    Host host;
    struct Case {
        const char *name;
        bool started;
        bool nothingToShow;
    };
    for (const Case &c : {Case{"launch failed", false, false}, Case{"nothing to show", true, true}}) {
        Launch launch;
        Factory factory;
        factory.empty = c.nothingToShow;
        Answers answers;
        OSTRootController root(factory.make(), options(&host.window, OSTAnimation::Animated));
        root.setLaunchWaiter(launch.waiter());
        root.present(answers.record());
        QCoreApplication::processEvents();
        launch.finish(c.started);
        EXPECT_EQ(answers.values, QList<bool>{false}) << c.name;
        finish(root.presenter()->runningTransition());
        EXPECT_EQ(root.view()->parentWidget(), nullptr) << c.name << ": the cover is dismissed";
    }

    Factory factory;
    Answers answers;
    OSTRootController loadOnly(factory.make());
    loadOnly.present(answers.record());
    EXPECT_EQ(answers.values, QList<bool>{false}) << "no settings, no presentation";
    loadOnly.dismiss(answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{false, false, true})) << "dismissing without a child answers twice";
}

TEST(RootController, DismissalOrDeletionWhileWaitingForTheLaunchDropsTheWork)
{
    expectStillStarting();
    Host host;
    Launch launch;
    Factory factory;
    Answers answers;
    {
        OSTRootController root(factory.make(), options(&host.window, OSTAnimation::Immediate));
        root.setLaunchWaiter(launch.waiter());
        root.present(answers.record());
        root.dismiss(answers.record());
        EXPECT_EQ(root.launchSnapshot(), nullptr);
        QCoreApplication::processEvents();
        launch.finish(true);
        EXPECT_EQ(factory.calls, 0) << "a dismissed presentation builds nothing";
        EXPECT_EQ(root.view()->parentWidget(), nullptr);
    }
    EXPECT_EQ(answers.values, (QList<bool>{false, true, false}));

    auto *doomed = new OSTRootController(factory.make(), options(&host.window, OSTAnimation::Immediate));
    doomed->setLaunchWaiter(launch.waiter());
    doomed->load(answers.record());
    delete doomed;
    launch.finish(true);
    EXPECT_EQ(factory.calls, 0) << "work for a deleted controller is dropped";

    OSTRootController loaded(factory.make());
    loaded.setLaunchWaiter(launch.waiter());
    loaded.load(answers.record());
    launch.finish(true);
    EXPECT_EQ(answers.values.last(), true);
    ASSERT_NE(factory.made, nullptr);
    EXPECT_EQ(factory.made->parentController(), &loaded);
    EXPECT_EQ(factory.made->view()->parentWidget(), loaded.view());
    EXPECT_EQ(loaded.view()->parentWidget(), nullptr) << "loading does not present";
}

TEST(RootController, TheStatusBarIsPutBackAsItWas)
{
    becomeActive();
    OSTApplicationStatusBar &statusBar = OSTApplicationStatusBar::sharedStatusBar();
    for (const bool controllerBased : {true, false}) {
        Host host({360, 640}, {{u"UIViewControllerBasedStatusBarAppearance"_s, controllerBased}});
        statusBar.setVisibility(Visibility::Shown, OSTAnimation::Immediate);
        statusBar.setStyle(OSTStatusBarStyle::LightContent, OSTAnimation::Immediate);
        Launch launch;
        Factory factory;
        factory.hidesStatusBar = true;
        OSTRootController root(factory.make(), options(nullptr, OSTAnimation::Immediate));
        root.setLaunchWaiter(launch.waiter());
        root.present(nullptr);
        launch.finish(true);
        EXPECT_EQ(statusBar.visibility(), controllerBased ? Visibility::Hidden : Visibility::Shown);
        if (controllerBased) {
            factory.made->hidesStatusBar = false;
            factory.made->setNeedsStatusBarAppearanceUpdate();
            EXPECT_EQ(statusBar.visibility(), Visibility::Shown) << "the experience's wishes are followed";
            factory.made->hidesStatusBar = true;
            factory.made->setNeedsStatusBarAppearanceUpdate();
        } else {
            statusBar.setVisibility(Visibility::Hidden, OSTAnimation::Immediate);
        }
        statusBar.setStyle(OSTStatusBarStyle::Default, OSTAnimation::Immediate);
        root.dismiss(nullptr);
        EXPECT_EQ(statusBar.visibility(), Visibility::Shown);
        EXPECT_EQ(statusBar.style(), OSTStatusBarStyle::LightContent);
    }
}

TEST(RootController, PresentingOverALandscapeWindowWarnsAndCarriesOn)
{
    becomeActive();
    OSTLogging::setLoggingLevel(2);
    const QString warning = u"Presenting experience in landscape orientation, which is currently not supported by the SDK."_s;
    for (const QSize size : {QSize(800, 400), QSize(400, 800)}) {
        Host host(size);
        Launch launch;
        Factory factory;
        Answers answers;
        OSTRootController root(factory.make(), options(&host.window, OSTAnimation::Immediate));
        root.setLaunchWaiter(launch.waiter());
        root.present(answers.record());
        const QString log = test::captureStandardError([&] { launch.finish(true); });
        EXPECT_EQ(log.contains(warning), size.width() > size.height()) << log.toStdString();
        EXPECT_EQ(answers.values, QList<bool>{true});
    }
}
