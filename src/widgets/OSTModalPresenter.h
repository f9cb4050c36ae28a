#pragma once

#include "widgets/OSTViewController.h"

#include <QObject>
#include <QPointer>

#include <functional>

class QAbstractAnimation;
class QPropertyAnimation;

namespace ostrel {

// Shows one controller modally. Over a host window the controller's view becomes a child widget
// that covers the whole window, stays on top of the window's other children and follows its
// size; without a host window the view becomes a phone-sized top-level window of its own. Presenting and
// dismissing are cross-dissolves (a fading picture of the view) or immediate, and drive the controller's
// appearance. Dismissal puts back what presenting changed: the view leaves the window, the
// event filter goes, and the widget that had the keyboard focus gets it back. A host window
// destroyed while covered gives the view back to its controller first.
//
// Lives on the GUI thread, a child of the controller it presents.
class OSTModalPresenter : public QObject {
    Q_OBJECT

public:
    using Completion = std::function<void(bool finished)>;
    enum class Placement { NotPresented, CoveringWindow, OwnWindow };

    static constexpr int defaultTransitionMilliseconds = 300;

    explicit OSTModalPresenter(OSTViewController *controller);
    ~OSTModalPresenter() override;

    // Covers the window of `host`, or when `host` is null the front-most window of the
    // application, or when there is none shows a window of its own. A second present while
    // presented answers false.
    void present(QWidget *host, OSTAnimation animation, Completion completion);
    // Takes the view off screen; answers true also when nothing was presented.
    void dismiss(OSTAnimation animation, Completion completion);

    Placement placement() const { return m_placement; }
    // The window covered, or null.
    QWidget *coveredWindow() const { return m_window.data(); }
    // The cross-dissolve in progress, or null. Tests drive it to its end with setCurrentTime().
    QAbstractAnimation *runningTransition() const;
    void setTransitionDuration(int milliseconds) { m_transitionMilliseconds = milliseconds; }

    // The application's active window, else its last visible, unminimised top-level window;
    // `excluded` (the presenter's own view, say) never counts.
    static QWidget *frontMostWindow(const QWidget *excluded = nullptr);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void cover(QWidget *window);
    void showAsOwnWindow();
    // Runs the opacity of the view from `from` to `to`, then `done`; at once when not animated.
    void fade(double from, double to, OSTAnimation animation, std::function<void()> done);
    void finishRunningTransition();
    void restoreHost();
    void hostWindowDestroyed();

    QPointer<OSTViewController> m_controller;
    Placement m_placement = Placement::NotPresented;
    QPointer<QWidget> m_window;
    QPointer<QWidget> m_previousFocus;
    QPointer<QPropertyAnimation> m_fade;
    QMetaObject::Connection m_windowDestroyedConnection;
    int m_transitionMilliseconds = defaultTransitionMilliseconds;
};

} // namespace ostrel
