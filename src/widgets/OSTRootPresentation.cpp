#include "widgets/OSTRootPresentation.h"

#include "model/OSTExperienceModel.h"
#include "widgets/OSTExperienceController.h"
#include "widgets/OSTLaunchController.h"
#include "widgets/OSTLoadingOverlay.h"
#include "widgets/OSTModalPresenter.h"
#include "widgets/OSTRootController.h"

#include <QAbstractAnimation>

namespace ostrel {

namespace {

OSTRootController::ChildFactory experienceOfType(int type)
{
    return [type](QSizeF area, OSTRootController::Delivery deliver) {
        OSTExperienceController::controllerWithType(
            type, area, [deliver = std::move(deliver)](OSTExperienceController *controller) { deliver(controller); });
    };
}

OSTAnimation animation(bool animated)
{
    return animated ? OSTAnimation::Animated : OSTAnimation::Immediate;
}

} // namespace

OSTRootPresentation::OSTRootPresentation(const OSTExperienceSettings &settings)
    : m_root(new OSTRootController(experienceOfType(settings.experienceType),
                                   {settings.presentingViewController, animation(settings.shouldPresentAnimated),
                                    animation(settings.shouldDismissAnimated)}))
{
}

OSTRootPresentation::OSTRootPresentation(int type) : m_root(new OSTRootController(experienceOfType(type)))
{
}

OSTRootPresentation::~OSTRootPresentation()
{
    OSTRootController *root = m_root.data();
    if (!root || m_viewTaken)
        return;
    // A dismissal still fading out finishes before the cover goes.
    if (QAbstractAnimation *transition = root->presenter()->runningTransition())
        QObject::connect(transition, &QAbstractAnimation::finished, root, &QObject::deleteLater);
    else
        root->deleteLater();
}

void OSTRootPresentation::presentWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (m_root)
        m_root->present(std::move(completion));
    else if (completion)
        completion(false);
}

void OSTRootPresentation::dismissWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (m_root)
        m_root->dismiss(std::move(completion));
    else if (completion)
        completion(false);
}

void OSTRootPresentation::loadWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (m_root)
        m_root->load(std::move(completion));
    else if (completion)
        completion(false);
}

QWidget *OSTRootPresentation::takeView()
{
    if (!m_root || m_viewTaken)
        return nullptr;
    m_viewTaken = true;
    QWidget *view = m_root->view();
    QObject::connect(view, &QObject::destroyed, m_root, &QObject::deleteLater);
    return view;
}

OSTRootController *OSTRootPresentation::rootController() const
{
    return m_root.data();
}

std::shared_ptr<const OSTScreen> OSTRootPresentation::currentScreen() const
{
    auto *experience = m_root ? qobject_cast<OSTExperienceController *>(m_root->experienceController()) : nullptr;
    return experience ? experience->model().currentScreen() : nullptr;
}

} // namespace ostrel
