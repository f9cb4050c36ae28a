#pragma once

#include <QNetworkInformation>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace ostrel {

// The bits of a reachability reading, with the values the status table is written in.
enum OSTReachabilityFlag : std::uint32_t {
    OSTReachabilityFlagReachable = 1u << 1,
    OSTReachabilityFlagConnectionRequired = 1u << 2,
    OSTReachabilityFlagConnectionOnTraffic = 1u << 3,
    OSTReachabilityFlagInterventionRequired = 1u << 4,
    OSTReachabilityFlagConnectionOnDemand = 1u << 5,
    OSTReachabilityFlagIsWWAN = 1u << 18,
};

enum OSTReachabilityStatus : int {
    // No reading, or reachable only through a connection that needs the user.
    OSTReachabilityStatusUnknown = 0,
    OSTReachabilityStatusNotReachable = 1,
    OSTReachabilityStatusReachableViaWWAN = 2,
    // Reachable; reported as Wi-Fi whatever the medium.
    OSTReachabilityStatusReachableViaWiFi = 3,
};

// General internet reachability of the device, read from the first QNetworkInformation backend
// that loads among preferredBackends(); which one (or none) is logged once at info level.
// Watching starts once per process: queued on the main thread when the application object is
// made, or at the first status() call on the main thread if that comes sooner. Without a backend
// the status is 0. Every change of the reading posts OSTReachabilityDidChangeNotification (no
// object, no user info) on the main thread. status() may be called from any thread.
class OSTReachability {
public:
    OSTReachability() = delete;

    // Loads the backend and starts watching; later calls do nothing. Main thread only.
    static void load();
    // The backends tried, in order.
    static QStringList preferredBackends();
    static OSTReachabilityStatus status();
    // The current reading, or nothing when there is none.
    static std::optional<std::uint32_t> flags();
    static OSTReachabilityStatus statusForFlags(std::uint32_t flags);

    // The reading for a network state: nothing when the state is unknown; not reachable for a
    // disconnected, local-only or site-only network; reachable when online, with the WWAN bit on
    // cellular networks and "connection needs the user" behind a captive portal.
    static std::optional<std::uint32_t> flagsForNetworkState(QNetworkInformation::Reachability reachability,
                                                             QNetworkInformation::TransportMedium medium,
                                                             bool behindCaptivePortal);

    // Records a new reading and, when it differs from the last, posts the change notification
    // asynchronously on the main thread. The backend watcher calls it; any thread.
    static void updateFlags(std::optional<std::uint32_t> flags);
};

} // namespace ostrel
