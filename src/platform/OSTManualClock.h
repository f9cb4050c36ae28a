#pragma once

#include "platform/OSTClock.h"

#include <QMutex>

#include <map>
#include <utility>

namespace ostrel {

// A clock that only moves when told to. Timers fire from advance(), in order of their due time
// (then of scheduling), each on its context's thread: directly when that is the calling thread,
// queued otherwise. Thread-safe.
class OSTManualClock final : public OSTClock {
public:
    // Starts at `now` seconds since 2001-01-01 UTC; the monotonic clock starts at 0.
    explicit OSTManualClock(double now = 800000000.0);

    double now() const override;
    double monotonicNow() const override;
    OSTTimerId schedule(double seconds, QObject *context, std::function<void()> callback) override;
    void cancel(OSTTimerId timer) override;

    // Moves both clocks forward and fires every timer that falls due on the way, including timers
    // scheduled by callbacks that fire during this call.
    void advance(double seconds);
    // Sets the wall clock only (as if the user changed the system time); timers are unaffected.
    void setNow(double now);
    // Number of timers waiting to fire.
    int pendingTimerCount() const;

private:
    struct PendingTimer {
        QPointer<QObject> context;
        std::function<void()> callback;
    };
    using DueKey = std::pair<double, OSTTimerId>;

    mutable QMutex m_mutex;
    double m_wallOffset;
    double m_monotonic = 0.0;
    OSTTimerId m_nextId = 1;
    std::map<DueKey, PendingTimer> m_timers;
};

} // namespace ostrel
