// The Qt Quick flavour.
#include "experience/OSTExperienceToolkits.h"
#include "experience/OSTLinkedToolkits.h"
#include "quick/OSTQuickPresenter.h"

namespace ostrel {

void OSTLinkedToolkits::install()
{
    OSTExperienceToolkits::shared()->add(OSTQuickPresenter::shared());
}

} // namespace ostrel
