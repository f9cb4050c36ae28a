#pragma once

#include "events/OSTStatisticalEvent.h"
#include "model/OSTValidationGroup.h"
#include "platform/OSTClock.h"

#include <ostrel/OSTValidationResult.h>

#include <QObject>
#include <QSizeF>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTAction;
class OSTScreen;
class OSTScreenModelDelegate;
class OSTScreenModelView;
class OSTValidationManager;

// One screen of a flow, whatever draws it: waits a bounded time for the images the screen
// requires, reports how long loading took ("screen_load"), reports the screen displayed once,
// keeps the "next" buttons and the error message in step with the screen's validity, and turns
// actions into navigation for its delegate (the experience model) or into the social log-in.
//
// Lives on the GUI thread. Owned by whoever draws the screen (the screen controller), which is
// also its view: the view is set once the screen is drawn and outlives the model.
class OSTScreenModel final : public QObject, public OSTValidationGroup {
    Q_OBJECT

public:
    // The bounded wait for required images.
    static constexpr double requiredImageWait = 3.0;

    // Replaces the dynamic variables in the screen JSON text.
    using Substitution = std::function<QString(const QString &text)>;
    // The result of logging in with a social account: whether it worked and the account's fields.
    using SocialLogInCompletion = std::function<void(bool success, const QVariantMap &fields)>;
    // The host's answer to a social log-in: a validation result (none when the host has no
    // objection) and the user's identifier.
    using AuthenticationCompletion =
        std::function<void(const std::optional<OSTValidationResult> &result, const QString &userId)>;
    // The screen can be shown.
    using Ready = std::function<void()>;

    // What a screen reaches outside its toolkit. Start-up fills it from the experience manager,
    // the social log-in adapter and the user manager; an absent entry turns its feature off.
    struct Environment {
        // The area the screen is first laid out in: the place it will be shown in.
        QSizeF area{375, 667};
        Substitution substitution;
        // Opens an address; true when it could.
        std::function<bool(const QString &url)> openURL;
        // Logs in with the social account; `info` is the flow's log-in information.
        std::function<void(const QVariantMap &info, SocialLogInCompletion completion)> socialLogIn;
        // Hands the account's fields to the host for its own check, when the host wants them.
        std::function<void(const QVariantMap &fields, AuthenticationCompletion completion)> authenticate;
        // Records the logged-in user: the fields become user properties, then the user logs in.
        std::function<void(const QVariantMap &fields, const QString &userId)> logInUser;
    };

    OSTScreenModel(const std::shared_ptr<const OSTScreen> &screen, const Environment &environment,
                   QObject *parent = nullptr);
    ~OSTScreenModel() override;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_screen; }
    const Environment &environment() const { return m_environment; }

    // Loading: begin before the screen is drawn; then either it could not be drawn (a failed
    // load is reported) or its view is set and the model waits for the required images.
    void beginLoading();
    void failLoading();
    void setView(OSTScreenModelView &view);
    // Reports the load and calls `ready` once the required images are in or the bounded wait ran
    // out (the screen then shows without them). Without `ready` nothing is waited for.
    void waitForRequiredImages(Ready ready);
    void requiredImagesDidFinishLoading();

    // The screen came on display; the first time is reported.
    void screenDidAppear();
    // A tap outside buttons and inputs shows the screen's error message.
    void screenTapped();
    void handleAction(const std::shared_ptr<const OSTAction> &action);
    // An input's return key asks for the next screen.
    void goToNextScreen();

    void setDelegate(OSTScreenModelDelegate *delegate);
    // Kept weakly; registers the screen and its inputs with the flow's validation.
    void setValidationManager(const std::shared_ptr<OSTValidationManager> &manager);
    std::shared_ptr<OSTValidationManager> validationManager() const { return m_validationManager.lock(); }
    // Valid also when outside any flow's validation: then there is nothing to check.
    bool isValid() const;

    // OSTValidationGroup: "next" buttons follow the screen's validity; its error message shows.
    void validityChanged() override;

private:
    void requiredImagesTimedOut();
    void reportLoad(OSTStatisticalEvent::TimingType type);
    void fireReady();
    void logInWithSocialAccount(const std::shared_ptr<const OSTAction> &action);
    void authenticateSocialAccount(const std::shared_ptr<const OSTAction> &action, const QVariantMap &fields);
    void finishSocialLogIn(const std::shared_ptr<const OSTAction> &action, const QVariantMap &fields,
                           const QString &userId);

    const std::shared_ptr<const OSTScreen> m_screen;
    const Environment m_environment;
    OSTScreenModelView *m_view = nullptr; // set once drawn; outlives the model
    std::weak_ptr<OSTScreenModelDelegate> m_delegate;
    std::weak_ptr<OSTValidationManager> m_validationManager;
    Ready m_ready;
    std::optional<double> m_loadStart; // monotonic seconds
    std::optional<OSTTimerId> m_imageWait;
    bool m_didAppear = false;
};

} // namespace ostrel
