#pragma once

namespace ostrel {

// Levels accepted by Ostrel::setLoggingLevel. Each level writes its own messages and those of
// every lower level; values above OSTLoggingLevelDebug behave as debug.
enum OSTLoggingLevel : unsigned {
    OSTLoggingLevelNone = 0,
    OSTLoggingLevelError = 1,
    OSTLoggingLevelWarning = 2,
    OSTLoggingLevelInfo = 3,
    OSTLoggingLevelDebug = 4,
};

} // namespace ostrel
