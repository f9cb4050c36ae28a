#pragma once

#include "platform/OSTClock.h"

#include <QMutex>
#include <QTimer>

#include <unordered_map>

namespace ostrel {

// Real time: the system's wall clock, a steady clock and QTimer. Thread-safe.
class OSTSystemClock final : public OSTClock {
public:
    double now() const override;
    double monotonicNow() const override;
    OSTTimerId schedule(double seconds, QObject *context, std::function<void()> callback) override;
    void cancel(OSTTimerId timer) override;

private:
    void forget(OSTTimerId timer);

    mutable QMutex m_mutex;
    OSTTimerId m_nextId = 1;
    // Timers live on their context's thread; only that thread may stop them.
    std::unordered_map<OSTTimerId, QPointer<QTimer>> m_timers;
};

} // namespace ostrel
