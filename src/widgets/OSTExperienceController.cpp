#include "widgets/OSTExperienceController.h"

#include "experience/OSTExperienceManager.h"
#include "experience/OSTFlow.h"
#include "model/OSTExperienceModel.h"
#include "model/OSTScreenEnvironment.h"
#include "widgets/OSTLoadingOverlay.h"

#include <QShortcut>

#include <algorithm>

namespace ostrel {

void OSTExperienceController::controllerWithType(int type, QSizeF area, Completion completion)
{
    const std::optional<OSTExperienceModel::Start> start = OSTExperienceModel::startOfType(type);
    if (!start) {
        completion(nullptr);
        return;
    }
    const OSTScreenController::Environment environment = OSTScreenEnvironment::forExperience(area);
    OSTScreenController::controllerWithScreen(
        start->flow->screens().front(), environment,
        [environment, key = start->experienceKey, completion = std::move(completion)](OSTScreenController *first) {
            completion(first ? new OSTExperienceController(environment, first, key) : nullptr);
        });
}

OSTExperienceController::OSTExperienceController(const OSTScreenController::Environment &screenEnvironment,
                                                 OSTScreenController *first, const QString &experienceKey)
    : OSTNavigationController(first), m_screenEnvironment(screenEnvironment),
      m_model(std::make_unique<OSTExperienceModel>(static_cast<OSTExperienceView &>(*this), first->screenModel(),
                                                   experienceKey))
{
}

OSTExperienceController::~OSTExperienceController() = default;

QWidget *OSTExperienceController::loadView()
{
    QWidget *view = OSTNavigationController::loadView();
    // The overlay takes every click, the screen's close button's too: while it waits for an
    // answer that may never come, Escape still closes the experience.
    m_closeWhileWaiting = new QShortcut(QKeySequence(Qt::Key_Escape), view, this, [this] { m_model->close(); },
                                        Qt::WidgetWithChildrenShortcut);
    m_closeWhileWaiting->setEnabled(false);
    return view;
}

void OSTExperienceController::viewDidAppear(OSTAnimation animation)
{
    // The flow starts before its first screen is reported displayed (by the base, below).
    m_model->experienceDidAppear();
    OSTNavigationController::viewDidAppear(animation);
}

OSTScreenController *OSTExperienceController::controllerOf(const OSTScreenModel &screen) const
{
    for (OSTViewController *each : viewControllers()) {
        auto *controller = qobject_cast<OSTScreenController *>(each);
        if (controller && &controller->screenModel() == &screen)
            return controller;
    }
    return nullptr;
}

// --- The experience model's view --------------------------------------------------------------

OSTScreenModel *OSTExperienceController::makeScreen(const std::shared_ptr<const OSTScreen> &screen)
{
    OSTScreenController *controller = OSTScreenController::controllerWithScreen(screen, m_screenEnvironment);
    if (!controller)
        return nullptr;
    m_offStage.emplace_back(controller);
    return &controller->screenModel();
}

void OSTExperienceController::pushScreen(OSTScreenModel &screen)
{
    const auto made = std::ranges::find_if(
        m_offStage, [&screen](const auto &controller) { return &controller->screenModel() == &screen; });
    if (made == m_offStage.end())
        return;
    OSTScreenController *controller = made->release();
    m_offStage.erase(made);
    pushViewController(controller, OSTAnimation::Animated);
}

void OSTExperienceController::popScreen()
{
    popViewController(OSTAnimation::Animated);
}

void OSTExperienceController::popToScreen(OSTScreenModel &screen)
{
    popToViewController(controllerOf(screen), OSTAnimation::Animated);
}

void OSTExperienceController::showLoadingOverlay()
{
    if (!m_loadingOverlay)
        m_loadingOverlay = new OSTLoadingOverlay(view());
    m_loadingOverlay->presentOnView(view());
    m_closeWhileWaiting->setEnabled(true);
}

void OSTExperienceController::hideLoadingOverlay()
{
    if (m_loadingOverlay)
        m_loadingOverlay->dismiss();
    if (m_closeWhileWaiting)
        m_closeWhileWaiting->setEnabled(false);
}

void OSTExperienceController::dismiss()
{
    OSTExperienceManager::sharedManager().dismissExperienceWithCompletion(nullptr);
}

} // namespace ostrel
