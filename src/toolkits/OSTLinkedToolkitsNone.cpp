// The core flavour carries no toolkit: presenting an experience answers NO with a warning.
#include "experience/OSTLinkedToolkits.h"

namespace ostrel {

void OSTLinkedToolkits::install()
{
}

} // namespace ostrel
