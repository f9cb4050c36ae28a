// The Qt Widgets flavour.
#include "experience/OSTExperienceToolkits.h"
#include "experience/OSTLinkedToolkits.h"
#include "widgets/OSTRootPresenter.h"

namespace ostrel {

void OSTLinkedToolkits::install()
{
    OSTExperienceToolkits::shared()->add(OSTRootPresenter::shared());
}

} // namespace ostrel
