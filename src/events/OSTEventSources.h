#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <optional>

namespace ostrel {

// What the event manager takes from managers above it: the SDK token that every request
// carries, and the user, attribution and advertising values of the tracking parameters. The
// start-up code connects each source to its manager; a source left empty gives its default.
// Thread-safe: sources are read from the event queue and must be callable from any thread.
class OSTEventSources {
public:
    // An attribution as events report it.
    // A field the record does not hold is left out of the events.
    struct Attribution {
        std::optional<QString> sourceName;
        std::optional<QString> targetingID;
        std::optional<QString> targetingName;
    };

    struct Sources {
        std::function<std::optional<QString>()> sdkToken = {}; // default: no "token"
        std::function<std::optional<QString>()> userID = {}; // default: left out
        std::function<std::optional<QString>()> userName = {}; // default: left out
        std::function<QVariantMap()> deviceFingerprint = {}; // default: nothing
        std::function<std::optional<QString>()> advertiserID = {}; // default: left out
        std::function<std::optional<Attribution>()> installAttribution = {}; // default: left out
        std::function<std::optional<Attribution>()> latestAttribution = {}; // default: left out
    };

    OSTEventSources() = delete;

    // Replaces every source at once.
    static void connect(Sources sources);
    static Sources current();
};

} // namespace ostrel
