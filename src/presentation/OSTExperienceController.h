#pragma once

#include "platform/ui/OSTNavigationController.h"
#include "presentation/OSTScreenController.h"
#include "presentation/OSTScreenControllerDelegate.h"

#include <QHash>
#include <QPointer>
#include <QSizeF>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

class QShortcut;

namespace ostrel {

class OSTFlow;
class OSTLoadingOverlay;
class OSTScreen;
class OSTValidationManager;

// Runs one experience: a stack of screen controllers, possibly spanning several flows (a screen
// may start another flow on top of its own). It moves forward, back, into and out of flows, runs
// the checks that must pass before a screen is left (the host's unique-field check, the phone
// number's PIN request), hands the fields to the host's experience delegate at the end of the
// "LOGIN", "SIGNUP" and "RECOVERPW" flows, and reports the flow events.
//
// Each flow in use has one validation manager, from its first screen until the user leaves the
// flow backwards, so values survive going forward and coming back within a flow.
//
// Lives on the GUI thread. Owns its screen controllers (the navigation stack). The host's and the
// phone verification's answers may arrive on any thread; they are brought to the GUI thread, and
// an answer given twice counts once. An answer that never comes leaves the loading overlay up;
// Escape still closes the experience.
class OSTExperienceController final : public OSTNavigationController, public OSTScreenControllerDelegate {
    Q_OBJECT

public:
    using Completion = std::function<void(OSTExperienceController *controller)>;

    // Builds the experience of `type` (an OSTExperienceType) laid out for `area` and calls
    // `completion` with it once its first screen is ready, or with null when there is nothing to
    // show (no key for the type, no flow, a flow without screens, a first screen that cannot be
    // built). A logged-out experience without a flow falls back to the install experience. The
    // caller owns the controller it receives.
    static void controllerWithType(int type, QSizeF area, Completion completion);
    ~OSTExperienceController() override;

    // The screen on display and its flow; null when none.
    std::shared_ptr<const OSTScreen> currentScreen() const;
    std::shared_ptr<const OSTFlow> currentFlow() const;

    void startFlowWithKey(const QString &key);
    void goToNextScreen();
    void goToPreviousScreen();
    void goToPreviousFlow();
    void close();
    // Takes the user back to the first screen of `flow` whose fields are invalid; false when all
    // are valid.
    bool goToFirstInvalidScreenOfFlow(const OSTFlow &flow);

    // The flow's manager, made on first use.
    std::shared_ptr<OSTValidationManager> validationManagerForFlowWithKey(const QString &key);
    void removeValidationManagerForFlowWithKey(const QString &key);

    // Moves forward from `controller` once its screen and, at the end of a flow, the flow pass
    // their checks; the loading overlay covers the experience while an answer is awaited.
    void validateController(OSTScreenController &controller);

    OSTLoadingOverlay *loadingOverlay() const { return m_loadingOverlay.data(); }

    // OSTScreenControllerDelegate
    void screenControllerShouldClose(OSTScreenController &controller) override;
    void screenControllerShouldGoToNextScreen(OSTScreenController &controller) override;
    void screenControllerShouldGoToPreviousScreen(OSTScreenController &controller) override;
    void screenControllerShouldStartFlow(OSTScreenController &controller, const QString &flowKey) override;

protected:
    QWidget *loadView() override;
    void viewDidAppear(OSTAnimation animation) override;

private:
    using Done = std::function<void()>;
    using UserDone = std::function<void(const std::optional<QString> &userID)>;

    // `first` was made with `screenEnvironment`; later screens are made with it too.
    OSTExperienceController(const OSTScreenController::Environment &screenEnvironment, OSTScreenController *first,
                            const QString &experienceKey);

    OSTScreenController *topScreenController() const;
    // Makes a screen controller of this experience; null when the screen cannot be built.
    OSTScreenController *makeScreenController(const std::shared_ptr<const OSTScreen> &screen);
    void adopt(OSTScreenController &controller, const QString &validationKey);

    // The checks before leaving the screen of `controller`; `done` runs on the GUI thread.
    void validateScreenOfController(OSTScreenController &controller, Done done);
    void validatePhoneNumberOfControllerIfAny(OSTScreenController &controller, Done done);
    // The host's hand-over at the end of a flow; `done` gets the user's identifier.
    void validateFlowOfController(OSTScreenController &controller, UserDone done);
    // The last screen of a flow passed its checks.
    struct FlowEnd {
        std::shared_ptr<const OSTFlow> flow;
        std::shared_ptr<const OSTScreen> screen;
        std::shared_ptr<OSTValidationManager> manager; // the screen's
    };
    void endFlow(const FlowEnd &end, const std::optional<QString> &userID);
    void recordAccount(const FlowEnd &end, const std::optional<QString> &userID);
    void runEndAction(const OSTFlow &flow);

    void showLoadingOverlay();
    void hideLoadingOverlay();
    void dismissExperience();

    const OSTScreenController::Environment m_screenEnvironment;
    QHash<QString, std::shared_ptr<OSTValidationManager>> m_validationManagers;
    QPointer<OSTLoadingOverlay> m_loadingOverlay; // child of the view, made on first use
    QPointer<QShortcut> m_closeWhileWaiting;       // child of the view; on while the overlay is up
    bool m_didAppear = false;
    bool m_steppingForward = false; // a step forward awaits its checks
    bool m_dismissed = false; // closed or at the end of its flows; later answers are dropped
};

} // namespace ostrel
