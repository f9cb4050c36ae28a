#pragma once

#include "events/OSTEvent.h"

#include <QUrl>

namespace ostrel {

// Timings and failures of the SDK's own work, all named "$$OST Timing" and told apart by their
// "event" parameter.
class OSTStatisticalEvent : public OSTEvent {
public:
    // How a timed operation ended; the numbers are part of the wire contract.
    enum TimingType { Failure = 1, Success = 2, Timeout = 3 };
    static inline const QString eventName = QStringLiteral("$$OST Timing");

    explicit OSTStatisticalEvent(const QVariantMap &parameters);

    // "failure", "success", "timeout"; the empty string for any other value.
    static QString stringForEventType(int type);

    static OSTStatisticalEvent launchEvent(double timing, int type);
    static OSTStatisticalEvent imageDownloadEvent(const QUrl &url, double timing, int type);
    static OSTStatisticalEvent internalServerErrorEvent(const QUrl &url);
    enum class Loading { Partial, Full };
    static OSTStatisticalEvent screenLoadEvent(double timing, int type, Loading loading);
    // An event the service kept refusing, dropped after its last try.
    static OSTStatisticalEvent refusedEventEvent(const QString &refusedName, int status);
    // The time from sending the first session start to the service's "OK" for it.
    static OSTStatisticalEvent sessionStartEvent(double timing);
};

} // namespace ostrel
