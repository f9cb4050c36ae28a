#pragma once

#include <functional>

namespace ostrel {

// Tells whether a host delegate overrides a callback: the default bodies of the public delegate
// classes note that they ran, and the caller looks at the note after the call. Any thread (the
// note is per thread).
class OSTDelegateDefaults {
public:
    OSTDelegateDefaults() = delete;

    // Called by a default body.
    static void noteDefaultBodyRan();
    // Runs `call`; returns whether no default body ran in it, that is, the host's override answered.
    static bool answeredByOverride(const std::function<void()> &call);
};

} // namespace ostrel
