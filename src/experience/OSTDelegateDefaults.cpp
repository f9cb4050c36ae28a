#include "experience/OSTDelegateDefaults.h"

#include <utility>

namespace ostrel {

namespace {

thread_local bool defaultBodyRan = false;

} // namespace

void OSTDelegateDefaults::noteDefaultBodyRan()
{
    defaultBodyRan = true;
}

bool OSTDelegateDefaults::answeredByOverride(const std::function<void()> &call)
{
    // Kept across the call so that a delegate calling back into the SDK cannot spoil the answer.
    const bool outer = std::exchange(defaultBodyRan, false);
    call();
    const bool answered = !defaultBodyRan;
    defaultBodyRan = outer;
    return answered;
}

} // namespace ostrel
