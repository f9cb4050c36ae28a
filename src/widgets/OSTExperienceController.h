#pragma once

#include "model/OSTExperienceView.h"
#include "widgets/OSTNavigationController.h"
#include "widgets/OSTScreenController.h"

#include <QPointer>
#include <QSizeF>

#include <functional>
#include <memory>
#include <vector>

class QShortcut;

namespace ostrel {

class OSTExperienceModel;
class OSTLoadingOverlay;
class OSTScreen;

// Shows one experience with Qt Widgets: a navigation stack of screen controllers that slide in and
// out, and a loading overlay over them. Its experience model decides where to go and when (flows,
// the checks before a screen is left, the hand-over to the host, the events) and drives it
// through OSTExperienceView.
//
// Lives on the GUI thread. Owns its experience model and its screen controllers (the navigation
// stack, and those made for it and not pushed yet). While the overlay waits for an answer that may never come, Escape still closes the
// experience.
class OSTExperienceController final : public OSTNavigationController, private OSTExperienceView {
    Q_OBJECT

public:
    using Completion = std::function<void(OSTExperienceController *controller)>;

    // Builds the experience of `type` (an OSTExperienceType) laid out for `area` and calls
    // `completion` with it once its first screen is ready, or with null when there is nothing to
    // show or its first screen cannot be built. The caller owns the controller it receives.
    static void controllerWithType(int type, QSizeF area, Completion completion);
    ~OSTExperienceController() override;

    OSTExperienceModel &model() { return *m_model; }
    OSTLoadingOverlay *loadingOverlay() const { return m_loadingOverlay.data(); }

protected:
    QWidget *loadView() override;
    void viewDidAppear(OSTAnimation animation) override;

private:
    // `first` was made with `screenEnvironment`; later screens are made with it too.
    OSTExperienceController(const OSTScreenController::Environment &screenEnvironment, OSTScreenController *first,
                            const QString &experienceKey);

    OSTScreenController *controllerOf(const OSTScreenModel &screen) const;

    // OSTExperienceView
    OSTScreenModel *makeScreen(const std::shared_ptr<const OSTScreen> &screen) override;
    void pushScreen(OSTScreenModel &screen) override;
    void popScreen() override;
    void popToScreen(OSTScreenModel &screen) override;
    void showLoadingOverlay() override;
    void hideLoadingOverlay() override;
    void dismiss() override;

    const OSTScreenController::Environment m_screenEnvironment;
    QPointer<OSTLoadingOverlay> m_loadingOverlay; // child of the view, made on first use
    QPointer<QShortcut> m_closeWhileWaiting;       // child of the view; on while the overlay is up
    // Screens made and not pushed yet; the stack takes them over when they are pushed.
    std::vector<std::unique_ptr<OSTScreenController>> m_offStage;
    std::unique_ptr<OSTExperienceModel> m_model;
};

} // namespace ostrel
