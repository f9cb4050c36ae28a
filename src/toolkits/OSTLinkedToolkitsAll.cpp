// Both toolkits, for the project's own tests, tools and benchmarks: Qt Quick first, so a
// QQuickWindow is covered by Qt Quick even in a QApplication.
#include "experience/OSTExperienceToolkits.h"
#include "experience/OSTLinkedToolkits.h"
#include "quick/OSTQuickPresenter.h"
#include "widgets/OSTRootPresenter.h"

namespace ostrel {

void OSTLinkedToolkits::install()
{
    OSTExperienceToolkits::shared()->add(OSTQuickPresenter::shared());
    OSTExperienceToolkits::shared()->add(OSTRootPresenter::shared());
}

} // namespace ostrel
