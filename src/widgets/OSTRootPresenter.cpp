#include "widgets/OSTRootPresenter.h"

#include "widgets/OSTRootPresentation.h"

namespace ostrel {

std::shared_ptr<OSTExperiencePresenter::Presentation>
OSTRootPresenter::presentationWithSettings(const OSTExperienceSettings &settings)
{
    return std::make_shared<OSTRootPresentation>(settings);
}

std::shared_ptr<OSTExperiencePresenter::Presentation> OSTRootPresenter::presentationWithType(int type)
{
    return std::make_shared<OSTRootPresentation>(type);
}

} // namespace ostrel
