#include "widgets/OSTNavigationController.h"

#include <QAbstractAnimation>
#include <QCoreApplication>
#include <QEvent>
#include <QPointer>
#include <QSignalSpy>

#include <gtest/gtest.h>

#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

using State = OSTViewController::AppearanceState;

class Page : public OSTViewController {
public:
    explicit Page(QString pageName) : name(std::move(pageName)) {}
    QString name;
    QStringList calls;
    bool hidesStatusBar = false;
    std::function<void()> onDidAppear;

    bool prefersStatusBarHidden() const override { return hidesStatusBar; }

protected:
    void viewWillAppear(OSTAnimation) override { calls << u"willAppear"_s; }
    void viewDidAppear(OSTAnimation) override
    {
        calls << u"didAppear"_s;
        if (onDidAppear)
            onDidAppear();
    }
    void viewWillDisappear(OSTAnimation) override { calls << u"willDisappear"_s; }
    void viewDidDisappear(OSTAnimation) override { calls << u"didDisappear"_s; }
};

// A navigation controller on screen in a 400 by 600 window.
struct Screen {
    QWidget window;
    Page *root = new Page(u"root"_s);
    OSTNavigationController *navigation = new OSTNavigationController(root);

    Screen()
    {
        window.resize(400, 600);
        navigation->view()->setParent(&window);
        navigation->view()->setGeometry(window.rect());
        window.show();
        navigation->beginAppearanceTransition(OSTViewController::Transition::Appear, OSTAnimation::Immediate);
        navigation->endAppearanceTransition();
    }
    ~Screen() { delete navigation; }

    void finishSlide() const
    {
        QAbstractAnimation *slide = navigation->runningTransition();
        ASSERT_NE(slide, nullptr);
        slide->setCurrentTime(slide->totalDuration());
        EXPECT_EQ(navigation->runningTransition(), nullptr);
    }
};

void deleteDeferred()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

} // namespace

TEST(NavigationController, AnimatedPushAndPopSlideAndHandAppearanceOver)
{
    Screen screen;
    ASSERT_EQ(screen.root->appearanceState(), State::Appeared);
    QSignalSpy shown(screen.navigation, &OSTNavigationController::didShowViewController);

    auto *second = new Page(u"second"_s);
    screen.navigation->pushViewController(second, OSTAnimation::Animated);
    EXPECT_EQ(screen.navigation->topViewController(), second);
    EXPECT_EQ(second->parentController(), screen.navigation);
    EXPECT_EQ(second->view()->pos(), QPoint(400, 0)) << "the new page starts off the right edge";
    EXPECT_EQ(screen.root->appearanceState(), State::Disappearing);
    EXPECT_EQ(second->appearanceState(), State::Appearing);
    EXPECT_TRUE(shown.isEmpty()) << "shown only when the slide has ended";

    screen.finishSlide();
    EXPECT_EQ(screen.root->appearanceState(), State::Disappeared);
    EXPECT_FALSE(screen.root->view()->isVisible());
    EXPECT_EQ(second->appearanceState(), State::Appeared);
    EXPECT_EQ(second->view()->geometry(), QRect(0, 0, 400, 600));
    ASSERT_EQ(shown.count(), 1);
    EXPECT_EQ(shown.at(0).at(0).value<OSTViewController *>(), second);

    QPointer<Page> watchedSecond = second;
    EXPECT_TRUE(screen.navigation->popViewController(OSTAnimation::Animated));
    EXPECT_EQ(screen.navigation->viewControllers(), QList<OSTViewController *>{screen.root});
    EXPECT_TRUE(screen.root->view()->isVisible()) << "the page below shows during the slide";
    screen.finishSlide();
    deleteDeferred();
    EXPECT_TRUE(watchedSecond.isNull()) << "a popped page is deleted once off screen";
    EXPECT_EQ(screen.root->appearanceState(), State::Appeared);
    EXPECT_EQ(screen.root->view()->geometry(), QRect(0, 0, 400, 600));
    EXPECT_EQ(screen.root->calls, (QStringList{u"willAppear"_s, u"didAppear"_s, u"willDisappear"_s,
                                               u"didDisappear"_s, u"willAppear"_s, u"didAppear"_s}));
    EXPECT_FALSE(screen.navigation->popViewController(OSTAnimation::Animated)) << "the last page stays";
}

TEST(NavigationController, RefusalsInterruptedSlidesAndPopsFromInsideAPage)
{
    Screen screen;
    screen.navigation->pushViewController(nullptr, OSTAnimation::Animated);
    screen.navigation->pushViewController(screen.root, OSTAnimation::Animated);
    EXPECT_EQ(screen.navigation->viewControllers().size(), 1);
    EXPECT_EQ(screen.navigation->runningTransition(), nullptr);

    auto *second = new Page(u"second"_s);
    auto *third = new Page(u"third"_s);
    screen.navigation->pushViewController(second, OSTAnimation::Animated);
    screen.navigation->pushViewController(third, OSTAnimation::Animated);
    EXPECT_EQ(second->calls, (QStringList{u"willAppear"_s, u"didAppear"_s, u"willDisappear"_s}))
        << "a push during a slide first completes the running one";
    screen.finishSlide();
    EXPECT_EQ(third->appearanceState(), State::Appeared);

    auto *fourth = new Page(u"fourth"_s);
    screen.navigation->pushViewController(fourth, OSTAnimation::Immediate);
    EXPECT_EQ(screen.navigation->runningTransition(), nullptr);
    EXPECT_EQ(fourth->appearanceState(), State::Appeared);

    Page stranger(u"stranger"_s);
    EXPECT_EQ(screen.navigation->popToViewController(&stranger, OSTAnimation::Animated), 0);
    EXPECT_EQ(screen.navigation->popToViewController(fourth, OSTAnimation::Animated), 0);
    QPointer<Page> watchedSecond = second;
    QPointer<Page> watchedThird = third;
    EXPECT_EQ(screen.navigation->popToViewController(second, OSTAnimation::Immediate), 2);
    deleteDeferred();
    EXPECT_TRUE(watchedThird.isNull());
    EXPECT_EQ(watchedSecond->appearanceState(), State::Appeared);

    // A page that pops itself from its own callback survives until the call has returned.
    auto *selfPopping = new Page(u"selfPopping"_s);
    QPointer<Page> watchedSelfPopping = selfPopping;
    bool popped = false;
    selfPopping->onDidAppear = [&] {
        if (std::exchange(popped, true))
            return;
        screen.navigation->popViewController(OSTAnimation::Immediate);
        EXPECT_FALSE(watchedSelfPopping.isNull());
    };
    QSignalSpy shown(screen.navigation, &OSTNavigationController::didShowViewController);
    screen.navigation->pushViewController(selfPopping, OSTAnimation::Immediate);
    ASSERT_EQ(shown.count(), 1) << "the page that left at once is never reported as shown";
    EXPECT_EQ(shown.at(0).at(0).value<OSTViewController *>(), second);
    deleteDeferred();
    EXPECT_TRUE(watchedSelfPopping.isNull());
    EXPECT_EQ(screen.navigation->topViewController(), second);
}

TEST(NavigationController, OffScreenStackSendsNoAppearanceAndLaterForwardsItsOwn)
{
    OSTNavigationController navigation;
    auto *root = new Page(u"root"_s);
    auto *second = new Page(u"second"_s);
    navigation.pushViewController(root, OSTAnimation::Animated);
    navigation.pushViewController(second, OSTAnimation::Animated);
    EXPECT_EQ(navigation.runningTransition(), nullptr) << "no view yet, nothing to slide";
    EXPECT_TRUE(root->calls.isEmpty());
    EXPECT_TRUE(second->calls.isEmpty());

    navigation.view()->resize(300, 500);
    navigation.beginAppearanceTransition(OSTViewController::Transition::Appear, OSTAnimation::Animated);
    EXPECT_EQ(second->appearanceState(), State::Appearing);
    navigation.endAppearanceTransition();
    EXPECT_EQ(second->appearanceState(), State::Appeared);
    EXPECT_EQ(root->appearanceState(), State::Disappeared);
    navigation.beginAppearanceTransition(OSTViewController::Transition::Disappear, OSTAnimation::Animated);
    navigation.endAppearanceTransition();
    EXPECT_EQ(second->appearanceState(), State::Disappeared);
}

TEST(NavigationController, StatusBarAndSizeFollowTheTopPage)
{
    Screen screen;
    QSignalSpy statusBar(screen.navigation, &OSTViewController::statusBarAppearanceChanged);
    auto *hidden = new Page(u"hidden"_s);
    hidden->hidesStatusBar = true;
    screen.navigation->pushViewController(hidden, OSTAnimation::Animated);
    EXPECT_TRUE(screen.navigation->prefersStatusBarHidden());
    EXPECT_EQ(statusBar.count(), 1);

    statusBar.clear();
    screen.root->setNeedsStatusBarAppearanceUpdate();
    EXPECT_TRUE(statusBar.isEmpty()) << "only the top page speaks for the status bar";
    hidden->setNeedsStatusBarAppearanceUpdate();
    EXPECT_EQ(statusBar.count(), 1);

    screen.window.resize(500, 700);
    screen.navigation->view()->resize(500, 700);
    EXPECT_EQ(screen.navigation->runningTransition(), nullptr) << "a resize ends the slide";
    EXPECT_EQ(hidden->view()->geometry(), QRect(0, 0, 500, 700));

    screen.navigation->popViewController(OSTAnimation::Immediate);
    EXPECT_FALSE(screen.navigation->prefersStatusBarHidden());
    statusBar.clear();
    hidden->setNeedsStatusBarAppearanceUpdate();
    EXPECT_TRUE(statusBar.isEmpty()) << "a popped page no longer speaks";
    EXPECT_EQ(screen.root->view()->geometry(), QRect(0, 0, 500, 700));
}
