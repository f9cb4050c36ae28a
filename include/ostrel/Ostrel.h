#pragma once

#include <ostrel/OSTLoggingLevel.h>

#include <QString>

namespace ostrel {

// The SDK's public entry point. Static functions only; each forwards to the manager that owns
// the work, so the facade itself keeps no state.
class Ostrel {
public:
    Ostrel() = delete;

    // Sets how much the SDK writes to standard error (see OSTLoggingLevel).
    static void setLoggingLevel(unsigned level);
    // The SDK's version, for example "3.0.0".
    static QString version();
};

} // namespace ostrel
