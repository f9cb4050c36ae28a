#pragma once

#include <QVariantMap>

namespace ostrel {

// The parameters every event carries besides its own, computed when the event is taken in: the
// QA mark, the user, the system and device, the device fingerprint and attributions, the host
// application's identity and the network reachability. Values that are absent are left out.
// Thread-safe.
class OSTTrackingParameters {
public:
    enum class QA { No, Yes };

    OSTTrackingParameters() = delete;

    static QVariantMap current(QA qa);

private:
    // What does not change while the process runs: the system, the device name and the main
    // bundle's identity.
    static const QVariantMap &processParameters();
};

} // namespace ostrel
