#include "quick/OSTQuickPresentation.h"

#include "experience/OSTExperienceToolkits.h"
#include "model/OSTExperienceModel.h"
#include "quick/OSTQuickCover.h"
#include "quick/OSTQuickExperienceItem.h"

#include <QAbstractAnimation>
#include <QQuickWindow>

namespace ostrel {

OSTQuickPresentation::OSTQuickPresentation(const OSTExperienceSettings &settings)
    : m_settings(settings), m_cover(new OSTQuickCover(settings))
{
}

OSTQuickPresentation::~OSTQuickPresentation()
{
    OSTQuickCover *cover = m_cover.data();
    if (!cover)
        return;
    // A dismissal still fading out deletes the cover when it ends.
    if (!cover->runningFade())
        cover->deleteLater();
}

OSTQuickCover *OSTQuickPresentation::cover() const
{
    return m_cover.data();
}

void OSTQuickPresentation::presentWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (!m_cover) {
        if (completion)
            completion(false);
        return;
    }
    auto *window = qobject_cast<QQuickWindow *>(OSTExperienceToolkits::windowToCover(m_settings));
    m_cover->present(window, std::move(completion));
}

void OSTQuickPresentation::dismissWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (m_cover)
        m_cover->dismiss(std::move(completion));
    else if (completion)
        completion(false);
}

void OSTQuickPresentation::loadWithCompletion(OSTExperiencePresenter::Completion completion)
{
    if (completion)
        completion(false);
}

QWidget *OSTQuickPresentation::takeView()
{
    return nullptr;
}

std::shared_ptr<const OSTScreen> OSTQuickPresentation::currentScreen() const
{
    const OSTQuickExperienceItem *experience = m_cover ? m_cover->experience() : nullptr;
    return experience ? experience->model().currentScreen() : nullptr;
}

} // namespace ostrel
