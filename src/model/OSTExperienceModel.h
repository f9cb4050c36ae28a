#pragma once

#include "model/OSTScreenModelDelegate.h"

#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

namespace ostrel {

class OSTExperienceView;
class OSTFlow;
class OSTScreen;
class OSTScreenModel;
class OSTValidationManager;

// Runs one experience, whatever draws it: a stack of screens, possibly spanning several flows (a
// screen may start another flow on top of its own). It moves forward, back, into and out of
// flows, runs the checks that must pass before a screen is left (the host's unique-field check,
// the phone number's PIN request), saves the screen's savable fields into the dynamic variables,
// hands the fields to the host's experience delegate at the end of the "LOGIN", "SIGNUP" and
// "RECOVERPW" flows, and reports the flow events. Its view shows what it decides.
//
// Each flow in use has one validation manager, from its first screen until the user leaves the
// flow backwards, so values survive going forward and coming back within a flow.
//
// Lives on the GUI thread. Owned by its view, which outlives it and owns the screens (the model
// keeps them weakly, in stack order). The host's and the phone verification's answers may arrive
// on any thread; they are brought to the GUI thread, and an answer given twice counts once. An
// answer that never comes leaves the loading overlay up; the user can still close.
class OSTExperienceModel final : public QObject, public OSTScreenModelDelegate {
    Q_OBJECT

public:
    // The experience chosen by a type: its key and its first flow, which has screens.
    struct Start {
        QString experienceKey;
        std::shared_ptr<const OSTFlow> flow;
    };
    // Asks the service to send a PIN to a raw phone number; `verified` may be called on any thread.
    using PhoneVerification = std::function<void(const QString &number, std::function<void(bool verified)> verified)>;

    // The experience of `type` (an OSTExperienceType); none when there is nothing to show (no key
    // for the type, no flow, a flow without screens), logged. A logged-out experience without a
    // flow falls back to the install experience.
    static std::optional<Start> startOfType(int type);
    // The phone verification of the service, through the phone number manager.
    static void verifyWithService(const QString &number, std::function<void(bool verified)> verified);

    // `first` is on display in `view`. It uses the key the experience was chosen by for its
    // validation, later screens their flow's own key.
    OSTExperienceModel(OSTExperienceView &view, OSTScreenModel &first, const QString &experienceKey,
                       PhoneVerification verifyPhoneNumber = &OSTExperienceModel::verifyWithService,
                       QObject *parent = nullptr);
    ~OSTExperienceModel() override;

    // The screen on display, its model and its flow; null when none.
    OSTScreenModel *topScreen() const;
    std::shared_ptr<const OSTScreen> currentScreen() const;
    std::shared_ptr<const OSTFlow> currentFlow() const;

    // The view came on display; the first time, the flow is reported started.
    void experienceDidAppear();

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

    // Moves forward from `screen` once it and, at the end of a flow, the flow pass their checks;
    // the loading overlay covers the experience while an answer is awaited.
    void validateScreen(OSTScreenModel &screen);

    // OSTScreenModelDelegate
    void screenModelShouldClose(OSTScreenModel &screen) override;
    void screenModelShouldGoToNextScreen(OSTScreenModel &screen) override;
    void screenModelShouldGoToPreviousScreen(OSTScreenModel &screen) override;
    void screenModelShouldStartFlow(OSTScreenModel &screen, const QString &flowKey) override;

private:
    using Done = std::function<void()>;
    using UserDone = std::function<void(const std::optional<QString> &userID)>;

    void adopt(OSTScreenModel &screen, const QString &validationKey);
    void push(OSTScreenModel &screen);
    void pop();
    void popTo(OSTScreenModel &screen);

    // The checks before leaving `screen`; `done` runs on the GUI thread.
    void validateFieldsOfScreen(OSTScreenModel &screen, Done done);
    void validatePhoneNumberOfScreenIfAny(OSTScreenModel &screen, Done done);
    // The host's hand-over at the end of a flow; `done` gets the user's identifier.
    void validateFlowOfScreen(OSTScreenModel &screen, UserDone done);
    // The last screen of a flow passed its checks.
    struct FlowEnd {
        std::shared_ptr<const OSTFlow> flow;
        std::shared_ptr<const OSTScreen> screen;
        std::shared_ptr<OSTValidationManager> manager; // the screen's
    };
    void endFlow(const FlowEnd &end, const std::optional<QString> &userID);
    void recordAccount(const FlowEnd &end, const std::optional<QString> &userID);
    void runEndAction(const OSTFlow &flow);

    void dismissExperience();

    OSTExperienceView &m_view;
    const PhoneVerification m_verifyPhoneNumber;
    QList<QPointer<OSTScreenModel>> m_screens; // bottom first; owned by the view
    QHash<QString, std::shared_ptr<OSTValidationManager>> m_validationManagers;
    bool m_didAppear = false;
    bool m_steppingForward = false; // a step forward awaits its checks
    bool m_dismissed = false; // closed or at the end of its flows; later answers are dropped
};

} // namespace ostrel
