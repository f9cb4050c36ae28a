#include "widgets/OSTModalPresenter.h"

#include "widgets/OSTFadingPicture.h"

#include <QAbstractAnimation>
#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QTest>
#include <QWindow>

#include <gtest/gtest.h>

using namespace ostrel;

namespace {

using State = OSTViewController::AppearanceState;

struct Answers {
    QList<bool> values;
    OSTModalPresenter::Completion record()
    {
        return [this](bool finished) { values.append(finished); };
    }
};

struct HostWindow {
    QWidget window;
    QLineEdit *field = new QLineEdit(&window);

    HostWindow()
    {
        window.resize(360, 640);
        field->setGeometry(10, 10, 200, 30);
        window.show();
        field->setFocus();
    }
};

void finish(QAbstractAnimation *animation)
{
    ASSERT_NE(animation, nullptr);
    animation->setCurrentTime(animation->totalDuration());
}

} // namespace

TEST(ModalPresenter, CoversTheFrontMostWindowFollowsItAndPutsEverythingBack)
{
    HostWindow host;
    ASSERT_EQ(host.window.focusWidget(), host.field);
    OSTViewController controller;
    auto *presenter = new OSTModalPresenter(&controller);
    Answers answers;

    presenter->present(nullptr, OSTAnimation::Immediate, answers.record());
    QWidget *view = controller.view();
    EXPECT_EQ(answers.values, QList<bool>{true});
    EXPECT_EQ(presenter->placement(), OSTModalPresenter::Placement::CoveringWindow);
    EXPECT_EQ(presenter->coveredWindow(), &host.window);
    EXPECT_EQ(view->parentWidget(), &host.window);
    EXPECT_EQ(view->geometry(), host.window.rect());
    EXPECT_EQ(host.window.childAt(20, 20), view) << "the cover is above the host's own widgets";
    EXPECT_NE(host.window.focusWidget(), host.field) << "the host's field does not keep the keyboard";
    EXPECT_EQ(controller.appearanceState(), State::Appeared);

    host.window.resize(500, 400);
    EXPECT_EQ(view->geometry(), QRect(0, 0, 500, 400));
    auto *lateChild = new QLabel(QStringLiteral("late"), &host.window);
    lateChild->setGeometry(0, 0, 100, 100);
    lateChild->show();
    EXPECT_EQ(host.window.childAt(20, 20), view) << "children the host adds later stay below";

    presenter->present(nullptr, OSTAnimation::Immediate, answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{true, false})) << "a second presentation is refused";

    presenter->dismiss(OSTAnimation::Immediate, answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{true, false, true}));
    EXPECT_EQ(view->parentWidget(), nullptr);
    EXPECT_FALSE(view->isVisible());
    EXPECT_EQ(host.window.focusWidget(), host.field);
    EXPECT_EQ(presenter->placement(), OSTModalPresenter::Placement::NotPresented);
    EXPECT_EQ(controller.appearanceState(), State::Disappeared);
    host.window.resize(300, 300);
    EXPECT_EQ(view->size(), QSize(500, 400)) << "the host's size is no longer followed";

    presenter->dismiss(OSTAnimation::Animated, answers.record());
    EXPECT_EQ(answers.values.last(), true) << "dismissing what is not presented still answers";
}

TEST(ModalPresenter, CrossDissolvesInAndOutAndFinishesAFadeBeforeTheNextOne)
{
    HostWindow host;
    OSTViewController controller;
    OSTModalPresenter presenter(&controller);
    Answers answers;

    presenter.present(&host.window, OSTAnimation::Animated, answers.record());
    // The view's picture fades in its place: an effect on the view would break the view's own.
    auto *picture = host.window.findChild<OSTFadingPicture *>();
    ASSERT_NE(picture, nullptr);
    EXPECT_DOUBLE_EQ(picture->opacity(), 0.0);
    EXPECT_EQ(picture->geometry(), controller.view()->geometry());
    EXPECT_FALSE(controller.view()->isVisible());
    EXPECT_TRUE(answers.values.isEmpty());
    EXPECT_EQ(controller.appearanceState(), State::Appearing);
    // Nothing of the host under the picture takes a click or a key during the fade.
    QTest::mouseClick(host.window.windowHandle(), Qt::LeftButton, {}, host.field->geometry().center());
    QTest::keyClick(host.window.windowHandle(), Qt::Key_A);
    EXPECT_TRUE(host.field->text().isEmpty());
    EXPECT_FALSE(host.field->hasFocus());
    finish(presenter.runningTransition());
    EXPECT_EQ(answers.values, QList<bool>{true});
    EXPECT_EQ(host.window.findChild<OSTFadingPicture *>(), nullptr) << "the picture is only for the fade";
    EXPECT_TRUE(controller.view()->isVisible());
    EXPECT_EQ(controller.view()->graphicsEffect(), nullptr);
    EXPECT_EQ(controller.appearanceState(), State::Appeared);

    presenter.dismiss(OSTAnimation::Animated, answers.record());
    EXPECT_EQ(controller.view()->parentWidget(), &host.window) << "still there while fading out";
    ASSERT_NE(host.window.findChild<OSTFadingPicture *>(), nullptr);
    finish(presenter.runningTransition());
    EXPECT_EQ(host.window.findChild<OSTFadingPicture *>(), nullptr);
    EXPECT_EQ(answers.values, (QList<bool>{true, true}));
    EXPECT_EQ(controller.view()->parentWidget(), nullptr);

    presenter.present(&host.window, OSTAnimation::Animated, answers.record());
    presenter.dismiss(OSTAnimation::Immediate, answers.record());
    EXPECT_EQ(answers.values, (QList<bool>{true, true, true, true}))
        << "a dismissal during the fade-in completes the presentation first";
    EXPECT_EQ(controller.appearanceState(), State::Disappeared);
    EXPECT_EQ(presenter.runningTransition(), nullptr);
}

TEST(ModalPresenter, WithoutAWindowShowsItsOwnAndSurvivesItsHostBeingDestroyed)
{
    OSTViewController alone;
    OSTModalPresenter ownWindow(&alone);
    Answers answers;
    ownWindow.present(nullptr, OSTAnimation::Immediate, answers.record());
    EXPECT_EQ(ownWindow.placement(), OSTModalPresenter::Placement::OwnWindow);
    EXPECT_TRUE(alone.view()->isWindow());
    EXPECT_TRUE(alone.view()->isVisible());
    EXPECT_EQ(alone.view()->size(), QSize(375, 667));
    ownWindow.dismiss(OSTAnimation::Immediate, answers.record());
    EXPECT_FALSE(alone.view()->isVisible());
    EXPECT_EQ(answers.values, (QList<bool>{true, true}));

    auto *host = new HostWindow;
    OSTViewController covering;
    OSTModalPresenter presenter(&covering);
    presenter.present(&host->window, OSTAnimation::Animated, answers.record());
    QPointer<QWidget> view = covering.view();
    delete host;
    EXPECT_FALSE(view.isNull()) << "the controller keeps its view when the host window goes";
    EXPECT_EQ(view->parentWidget(), nullptr);
    EXPECT_EQ(presenter.placement(), OSTModalPresenter::Placement::NotPresented);
    presenter.dismiss(OSTAnimation::Animated, answers.record());
    EXPECT_EQ(answers.values.last(), true);
}
