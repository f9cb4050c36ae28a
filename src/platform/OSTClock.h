#pragma once

#include <QDateTime>
#include <QObject>
#include <QPointer>

#include <cstdint>
#include <functional>
#include <memory>

namespace ostrel {

using OSTTimerId = std::uint64_t;

// The source of time for the whole SDK: wall time, a monotonic clock and one-shot timers.
// Production code asks OSTClock::current(); tests install an OSTManualClock so that the 3, 60,
// 900 and 7200 second intervals of the SDK pass without waiting.
class OSTClock {
public:
    virtual ~OSTClock() = default;

    // Seconds since 2001-01-01 00:00:00 UTC.
    virtual double now() const = 0;
    // now() as a UTC date and time.
    QDateTime dateTimeNow() const;
    // Seconds since an arbitrary origin; never goes backwards. For measuring durations.
    virtual double monotonicNow() const = 0;

    // Calls `callback` once on `context`'s thread after `seconds`, unless cancelled or unless
    // `context` is destroyed first. May be called from any thread.
    virtual OSTTimerId schedule(double seconds, QObject *context, std::function<void()> callback) = 0;
    // Cancels a pending timer; a timer that already fired or an unknown id is ignored.
    virtual void cancel(OSTTimerId timer) = 0;

    // The clock in use. Thread-safe.
    static OSTClock &current();
    // Replaces the clock in use, or restores the system clock when given nullptr. The previous
    // clock stays alive as long as anybody still holds it.
    static void setCurrent(std::shared_ptr<OSTClock> clock);
    static std::shared_ptr<OSTClock> currentShared();

    // Seconds between 1970-01-01 and 2001-01-01 UTC.
    static constexpr double referenceDateOffset = 978307200.0;
};

} // namespace ostrel
