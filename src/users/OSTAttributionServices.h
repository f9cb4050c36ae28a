#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace ostrel {

// What the attribution manager takes from the managers above and beside it: the SDK token, the
// timestamp format, the experience's dynamic variables, the current user's
// properties, and the launch sequence that a universal link may delay, cancel or start. Start-up
// connects them once; a service left empty does nothing (or gives an empty value).
//
// The launch calls are made on the GUI thread; the others from any thread.
struct OSTAttributionServices {
    std::function<std::optional<QString>()> sdkToken = {};
    // "yyyy-MM-dd HH:mm:ss.SSSSSS" in UTC of seconds since 1970.
    std::function<QString(double secondsSince1970)> formatTimestamp = {};
    // An empty prefix adds the names as they are.
    std::function<void(const QVariantMap &variables, const QString &prefix)> appendDynamicVariables = {};
    std::function<QVariantMap()> currentUserProperties = {};

    // The launch sequence.
    std::function<bool()> launched = {};
    std::function<void(std::function<void(bool success)>)> executeAfterLaunch = {};
    // Returns whether a session launch was pending.
    std::function<bool()> cancelSessionLaunch = {};
    std::function<void()> cancelLaunch = {};
    std::function<void()> invalidateLaunch = {};
    std::function<void()> launch = {};
    std::function<void()> sessionLaunch = {};
};

} // namespace ostrel
