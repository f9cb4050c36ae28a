#pragma once

#include "widgets/OSTApplicationStatusBar.h"
#include "widgets/OSTViewController.h"

#include <QPointer>
#include <QSizeF>

#include <functional>
#include <optional>

class QAbstractAnimation;
class QLabel;

namespace ostrel {

class OSTLaunchController;
class OSTModalPresenter;

// What the host sees of an experience: a controller presented over the host's front-most window
// (a covering child widget that follows the window's size; a window of its own when the host has
// none). Asked to present while the application is still starting, it first shows the host's
// launch screen (OSTLaunchController), waits for the SDK's launch, builds the experience and
// cross-fades to it; once the application is running it presents the experience directly.
// Dismissal puts the application's status bar back as it was.
//
// Lives on the GUI thread. Owns the experience controller and the launch cover as children. Work
// still waiting for the launch when the controller is dismissed or deleted is dropped (its
// completion answers false when the controller still exists).
class OSTRootController : public OSTViewController {
    Q_OBJECT

public:
    using Completion = std::function<void(bool success)>;
    // Receives the controller to show; null when there is nothing to show.
    using Delivery = std::function<void(OSTViewController *child)>;
    // Builds the controller to show, to fill an area of the given size, and hands it over, possibly
    // later. Called on the GUI thread once the SDK has launched; the root controller takes
    // ownership of what it receives (and deletes it when it has been dismissed meanwhile).
    using ChildFactory = std::function<void(QSizeF area, Delivery deliver)>;
    // Runs the block once the SDK's launch has finished, with whether the SDK is started.
    using LaunchWaiter = std::function<void(std::function<void(bool success)>)>;

    // How to present, from the experience's settings.
    struct PresentationOptions {
        // The window to cover; null: the application's front-most window.
        QPointer<QWidget> presentingWindow;
        OSTAnimation presentAnimation = OSTAnimation::Animated;
        OSTAnimation dismissAnimation = OSTAnimation::Animated;
    };

    static constexpr int crossFadeMilliseconds = 250;

    // A controller that can only be loaded, not presented.
    explicit OSTRootController(ChildFactory childFactory, QObject *parent = nullptr);
    OSTRootController(ChildFactory childFactory, PresentationOptions options, QObject *parent = nullptr);
    ~OSTRootController() override;

    // Replaces Ostrel::executeAfterLaunch, the default.
    void setLaunchWaiter(LaunchWaiter waiter);

    // Builds the child once the SDK has launched, without presenting.
    void load(Completion completion);
    // Presents; false without presentation options, when already presented, when the SDK did not
    // start or when there is nothing to show.
    void present(Completion completion);
    // Without a child the completion is called twice, false then true, as callers expect.
    void dismiss(Completion completion);

    // The experience once built, else the launch cover, else null.
    OSTViewController *childViewController() const;
    OSTViewController *experienceController() const { return m_child.data(); }
    OSTLaunchController *launchController() const { return m_launchController.data(); }
    // The picture of the launch cover laid over the host while the cover itself is presented.
    QWidget *launchSnapshot() const;
    OSTModalPresenter *presenter() const { return m_presenter; }
    // The cross-fade from the launch cover in progress, or null.
    QAbstractAnimation *runningCrossFade() const;

    bool prefersStatusBarHidden() const override;
    OSTStatusBarStyle preferredStatusBarStyle() const override;

protected:
    QWidget *loadView() override;
    void viewWillAppear(OSTAnimation animation) override;
    void viewDidAppear(OSTAnimation animation) override;
    void viewWillDisappear(OSTAnimation animation) override;
    void viewDidDisappear(OSTAnimation animation) override;

private:
    enum class State { Idle, Presenting, Presented, Dismissed };

    void waitForLaunch(std::function<void(bool success)> then);
    // Adds `child` with its view pinned to this view.
    void embed(OSTViewController *child);
    // The same inside an immediate appearance of the child, for a child shown at once.
    void embedAppearing(OSTViewController *child);
    void makeChild(Delivery then);

    void presentLaunch(Completion completion);
    void presentLaunchCover(Completion completion);
    void presentExperience(Completion completion);
    void failPresentation(const Completion &completion);
    void crossFadeFromLaunch(Completion completion);
    void finishCrossFade(const Completion &completion);
    void removeLaunchSnapshot();
    void fadeOutLaunchSnapshot();

    void presentModally(OSTAnimation animation, Completion completion);
    void dismissModally(OSTAnimation animation, Completion completion);
    QWidget *hostWindow();
    QSizeF coveredAreaSize();
    double coveredDevicePixelRatio();

    void recordStatusBar();
    void restoreStatusBar(OSTAnimation animation);
    void applyStatusBarPreferences();
    void warnWhenLandscape();

    ChildFactory m_childFactory;
    std::optional<PresentationOptions> m_options;
    LaunchWaiter m_launchWaiter;
    State m_state = State::Idle;

    QPointer<OSTViewController> m_child;
    QPointer<OSTLaunchController> m_launchController;
    QPointer<QLabel> m_launchSnapshot;
    QPointer<QAbstractAnimation> m_crossFade;
    OSTModalPresenter *m_presenter = nullptr;

    std::optional<OSTApplicationStatusBar::Visibility> m_originalStatusBarVisibility;
    std::optional<OSTStatusBarStyle> m_originalStatusBarStyle;
};

} // namespace ostrel
