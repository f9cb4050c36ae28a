#pragma once

#include "input/OSTValidationGroup.h"
#include "platform/OSTClock.h"
#include "platform/ui/OSTViewController.h"
#include "presentation/OSTScreenView.h"
#include "presentation/OSTScreenViewDelegate.h"

#include <ostrel/OSTValidationResult.h>

#include <QMetaObject>
#include <QPointer>
#include <QSizeF>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTAction;
class OSTLoadingOverlay;
class OSTScreen;
class OSTScreenControllerDelegate;
class OSTValidationManager;

// Shows one screen of a flow: builds its screen view, waits a bounded time for the images the
// screen needs, reports how long loading took ("screen_load"), reports the screen displayed once,
// and turns button presses into actions for its delegate (the experience controller).
//
// The controller's view is the screen view itself; whoever shows it sizes it, and the screen is
// laid out again for the new size.
//
// Lives on the GUI thread. A controller made with a completion belongs to the completion's
// receiver once it succeeded; on failure it deletes itself after calling the completion with null.
class OSTScreenController final : public OSTViewController,
                                  public OSTScreenViewDelegate,
                                  public OSTValidationGroup {
    Q_OBJECT

public:
    // The bounded wait for required images.
    static constexpr double requiredImageWait = 3.0;

    using Completion = std::function<void(OSTScreenController *controller)>;

    // The result of logging in with a social account: whether it worked and the account's fields.
    using SocialLogInCompletion = std::function<void(bool success, const QVariantMap &fields)>;
    // The host's answer to a social log-in: a validation result (none when the host has no
    // objection) and the user's identifier.
    using AuthenticationCompletion =
        std::function<void(const std::optional<OSTValidationResult> &result, const QString &userId)>;

    // What a screen reaches outside presentation. Start-up fills it from the experience manager,
    // the social log-in adapter and the user manager; an absent entry turns its feature off.
    struct Environment {
        // The area the screen is first laid out in: the widget it will be shown in.
        QSizeF area{375, 667};
        OSTScreenView::Substitution substitution;
        // Opens an address; true when it could.
        std::function<bool(const QString &url)> openURL;
        // Logs in with the social account; `info` is the flow's log-in information.
        std::function<void(const QVariantMap &info, SocialLogInCompletion completion)> socialLogIn;
        // Hands the account's fields to the host for its own check, when the host wants them.
        std::function<void(const QVariantMap &fields, AuthenticationCompletion completion)> authenticate;
        // Records the logged-in user: the fields become user properties, then the user logs in.
        std::function<void(const QVariantMap &fields, const QString &userId)> logInUser;
    };

    // The controller, or null when no screen view could be built.
    static OSTScreenController *controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                                     const Environment &environment, QObject *parent = nullptr);
    // Calls `completion` with the controller once its required images are in or the bounded wait
    // ran out (the screen then shows without them), or with null when the screen could not be built.
    static void controllerWithScreen(const std::shared_ptr<const OSTScreen> &screen,
                                     const Environment &environment, Completion completion);
    ~OSTScreenController() override;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_screen; }
    OSTScreenView *screenView() const { return m_screenView; }

    void setDelegate(OSTScreenControllerDelegate *delegate);
    // Kept weakly; registers the screen and its inputs with the flow's validation.
    void setValidationManager(const std::shared_ptr<OSTValidationManager> &manager);
    std::shared_ptr<OSTValidationManager> validationManager() const { return m_validationManager.lock(); }

    void handleAction(const std::shared_ptr<const OSTAction> &action);

    bool prefersStatusBarHidden() const override { return m_statusBarHidden; }
    OSTStatusBarStyle preferredStatusBarStyle() const override { return m_statusBarStyle; }

    // OSTValidationGroup: "next" buttons follow the screen's validity; its error message shows.
    void validityChanged() override;

    // OSTScreenViewDelegate
    void screenViewDidTapScreen(OSTScreenView &view) override;
    void screenViewDidPressButton(OSTScreenView &view, OSTButton &button) override;
    void screenViewShouldGoToNextScreen(OSTScreenView &view) override;
    void screenViewShouldHandleAction(OSTScreenView &view, const std::shared_ptr<const OSTAction> &action) override;
    void screenViewDidFinishLoadingRequiredImages(OSTScreenView &view) override;

protected:
    QWidget *loadView() override;
    void viewDidAppear(OSTAnimation animation) override;
    void viewDidDisappear(OSTAnimation animation) override;

private:
    OSTScreenController(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                        Completion completion, QObject *parent);

    bool loadScreen();
    void readStatusBarStyle();
    void requiredImagesTimedOut();
    void fireLoadEvent(int type);
    void fireCompletion(bool success);
    void logInWithSocialAccount(const std::shared_ptr<const OSTAction> &action);
    void finishSocialLogIn(const std::shared_ptr<const OSTAction> &action, const QVariantMap &fields,
                           const QString &userId);
    void updateKeyboard();
    OSTLoadingOverlay *loadingOverlay();
    std::shared_ptr<OSTScreenControllerDelegate> lockedDelegate() const;

    const std::shared_ptr<const OSTScreen> m_screen;
    const Environment m_environment;
    QPointer<OSTScreenView> m_screenView; // the controller's view once loaded, deleted with it
    std::weak_ptr<OSTScreenControllerDelegate> m_delegate;
    std::weak_ptr<OSTValidationManager> m_validationManager;
    Completion m_completion;
    std::optional<double> m_loadStart; // monotonic seconds
    std::optional<OSTTimerId> m_imageWait;
    bool m_statusBarHidden = true;
    OSTStatusBarStyle m_statusBarStyle = OSTStatusBarStyle::Default;
    bool m_didAppear = false;
    QPointer<OSTLoadingOverlay> m_loadingOverlay; // child of the view, made on first use
    QMetaObject::Connection m_keyboardVisibility;
    QMetaObject::Connection m_keyboardGeometry;
};

} // namespace ostrel
