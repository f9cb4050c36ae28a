#pragma once

#include <ostrel/OSTExperienceSettings.h>

#include <QAbstractAnimation>
#include <QPointer>
#include <QQuickItem>

#include <functional>

class QQuickWindow;

namespace ostrel {

class OSTQuickExperienceItem;
class OSTQuickLaunchScreen;

// What a Qt Quick host sees of an experience: the top item of its window's scene, filling the
// window's content and following its size, taking every click and the keyboard focus (given back
// to the item that had it on dismissal). Asked to present while the application is still
// starting, it first shows the launch screen (OSTQuickLaunchScreen), waits for the SDK's launch,
// builds the experience and cross-fades to it; once the application runs it fades the experience
// in over the host (or shows it at once, as the settings ask).
//
// Lives on the GUI thread. Made by its presentation and placed in the window's scene, whose content
// item owns it from then on; owns the launch screen and the experience item as children. Work still
// waiting for the launch when the cover is dismissed or deleted is dropped.
class OSTQuickCover final : public QQuickItem {
    Q_OBJECT

public:
    using Completion = std::function<void(bool success)>;
    // Runs the block once the SDK's launch has finished, with whether the SDK is started.
    using LaunchWaiter = std::function<void(std::function<void(bool success)>)>;

    static constexpr int fadeMilliseconds = 300;
    static constexpr int crossFadeMilliseconds = 250;

    explicit OSTQuickCover(const OSTExperienceSettings &settings);
    ~OSTQuickCover() override;

    // Replaces Ostrel::executeAfterLaunch, the default.
    void setLaunchWaiter(LaunchWaiter waiter);

    // Covers `window`; false when it is gone, when already presented, when the SDK did not start or
    // when there is nothing to show.
    void present(QQuickWindow *window, Completion completion);
    // Fades out and leaves the window; the completion answers whether anything was presented.
    void dismiss(Completion completion);

    OSTQuickExperienceItem *experience() const;
    OSTQuickLaunchScreen *launchScreen() const;
    // The fade in, cross-fade or fade out in progress, or null.
    QAbstractAnimation *runningFade() const { return m_fade.data(); }

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void touchEvent(QTouchEvent *event) override;

private:
    enum class State { Idle, Presenting, Presented, Dismissed };

    void coverWindow(QQuickWindow &window);
    void followContentSize();
    void showLaunchScreen();
    void presentExperience(Completion completion);
    void showExperience(OSTQuickExperienceItem *experience, Completion completion);
    void fail(const Completion &completion);
    void fadeOpacity(QQuickItem *item, qreal from, qreal to, int milliseconds, std::function<void()> then);
    // Replaced by a later presentation: leaves without a fade.
    void leaveAtOnce();
    void leaveWindow();
    void finishRunningFade();

    const OSTExperienceSettings m_settings;
    LaunchWaiter m_launchWaiter;
    State m_state = State::Idle;
    QPointer<QQuickWindow> m_window;
    QPointer<QQuickItem> m_focusBeforePresenting;
    QPointer<OSTQuickLaunchScreen> m_launchScreen;  // child item while the application starts
    QPointer<OSTQuickExperienceItem> m_experience;  // child item once built
    QPointer<QAbstractAnimation> m_fade;
};

} // namespace ostrel
