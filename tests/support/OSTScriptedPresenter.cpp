#include "support/OSTScriptedPresenter.h"

namespace ostrel::test {

void OSTScriptedPresenter::Presentation::presentWithCompletion(Completion completion)
{
    presentCompletion = std::move(completion);
}

void OSTScriptedPresenter::Presentation::dismissWithCompletion(Completion completion)
{
    dismissCompletion = std::move(completion);
}

void OSTScriptedPresenter::Presentation::loadWithCompletion(Completion completion)
{
    loadCompletion = std::move(completion);
}

QWidget *OSTScriptedPresenter::Presentation::takeView()
{
    return &view;
}

std::shared_ptr<const OSTScreen> OSTScriptedPresenter::Presentation::currentScreen() const
{
    return screen;
}

std::shared_ptr<OSTExperiencePresenter::Presentation>
OSTScriptedPresenter::presentationWithSettings(const OSTExperienceSettings &settings)
{
    return presentationWithType(settings.experienceType);
}

std::shared_ptr<OSTExperiencePresenter::Presentation> OSTScriptedPresenter::presentationWithType(int type)
{
    requestedTypes.push_back(type);
    return last = std::make_shared<Presentation>();
}

} // namespace ostrel::test
