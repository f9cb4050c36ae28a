#pragma once

#include "widgets/OSTViewController.h"

#include <QList>
#include <QPointer>

class QAbstractAnimation;
class QParallelAnimationGroup;

namespace ostrel {

// A stack of controllers shown one at a time in a single view, without a navigation bar. Pushing
// slides the new controller in from the right over the old one; popping slides the top one out
// to the right. The top controller's view fills this controller's view and follows its size.
//
// Appearance reaches the children: while this controller is on screen a push or pop makes the
// old top disappear and the new top appear (ending when the slide ends), and this controller's
// own appearance is forwarded to its top controller. The status bar values are the top
// controller's.
//
// Lives on the GUI thread. Owns the controllers on its stack; a popped controller is deleted once
// its slide has ended. A push or pop while a slide is running first brings that slide to its end.
class OSTNavigationController : public OSTViewController {
    Q_OBJECT

public:
    static constexpr int defaultTransitionMilliseconds = 350;

    explicit OSTNavigationController(QObject *parent = nullptr);
    // Starts with `rootController` (taken over) at the bottom of the stack.
    explicit OSTNavigationController(OSTViewController *rootController, QObject *parent = nullptr);
    ~OSTNavigationController() override;

    // Bottom first.
    const QList<OSTViewController *> &viewControllers() const { return m_stack; }
    OSTViewController *topViewController() const;

    // Takes ownership of `controller` and makes it the top. A null controller or one already on
    // the stack is refused with a warning.
    void pushViewController(OSTViewController *controller, OSTAnimation animation);
    // Removes the top controller unless it is the only one; returns whether one was removed.
    bool popViewController(OSTAnimation animation);
    // Removes every controller above `controller`; returns how many were removed (0 when
    // `controller` is not on the stack or already the top).
    int popToViewController(OSTViewController *controller, OSTAnimation animation);

    // The slide in progress, or null. Tests drive it to its end with setCurrentTime().
    QAbstractAnimation *runningTransition() const;
    void setTransitionDuration(int milliseconds) { m_transitionMilliseconds = milliseconds; }

    bool prefersStatusBarHidden() const override;
    OSTStatusBarStyle preferredStatusBarStyle() const override;

Q_SIGNALS:
    // The stack changed and `controller` is the new top; emitted when its slide (if any) ended.
    void didShowViewController(ostrel::OSTViewController *controller);

protected:
    QWidget *loadView() override;
    void viewWillAppear(OSTAnimation animation) override;
    void viewDidAppear(OSTAnimation animation) override;
    void viewWillDisappear(OSTAnimation animation) override;
    void viewDidDisappear(OSTAnimation animation) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    enum class Direction { Forward, Backward };

    // Replaces the visible top `from` by the stack's top; `leaving` are deleted once the change
    // is over.
    void transition(OSTViewController *from, const QList<OSTViewController *> &leaving, Direction direction,
                    OSTAnimation animation);
    void startSlide(QWidget *from, QWidget *to, Direction direction);
    void finishTransition();
    void finishRunningTransition();
    bool isOnScreen() const;
    void placeTopView();
    void followTopStatusBar();

    QList<OSTViewController *> m_stack;
    QPointer<QParallelAnimationGroup> m_slide;
    int m_transitionMilliseconds = defaultTransitionMilliseconds;

    // The change in progress: who leaves the screen, who is deleted at the end.
    QPointer<OSTViewController> m_outgoing;
    QList<QPointer<OSTViewController>> m_discarded;
    bool m_forwardsAppearance = false;
    quint64 m_transitionCount = 0;
    QMetaObject::Connection m_topStatusBarConnection;
};

} // namespace ostrel
