#include "platform/OSTSystemClock.h"

#include <QDateTime>
#include <QMetaObject>
#include <QMutexLocker>
#include <QThread>

#include <chrono>
#include <cmath>

namespace ostrel {

double OSTSystemClock::now() const
{
    return static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000.0 - referenceDateOffset;
}

double OSTSystemClock::monotonicNow() const
{
    const auto sinceOrigin = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceOrigin).count();
}

OSTTimerId OSTSystemClock::schedule(double seconds, QObject *context, std::function<void()> callback)
{
    if (!context)
        return 0;
    OSTTimerId id;
    {
        QMutexLocker locker(&m_mutex);
        id = m_nextId++;
        m_timers.emplace(id, nullptr);
    }
    const int milliseconds = std::isfinite(seconds) && seconds > 0
        ? static_cast<int>(std::min(seconds * 1000.0, 2.0e9))
        : 0;
    // The QTimer must be created and started on the context's thread.
    QMetaObject::invokeMethod(context, [this, id, context, milliseconds, callback = std::move(callback)] {
        auto *timer = new QTimer(context);
        timer->setSingleShot(true);
        timer->setTimerType(milliseconds >= 10000 ? Qt::CoarseTimer : Qt::PreciseTimer);
        {
            QMutexLocker locker(&m_mutex);
            const auto entry = m_timers.find(id);
            if (entry == m_timers.end()) { // cancelled before it started
                delete timer;
                return;
            }
            entry->second = timer;
        }
        QObject::connect(timer, &QTimer::timeout, timer, [this, id, timer, callback] {
            forget(id);
            timer->deleteLater();
            callback();
        });
        timer->start(milliseconds);
    });
    return id;
}

void OSTSystemClock::cancel(OSTTimerId timer)
{
    QPointer<QTimer> running;
    {
        QMutexLocker locker(&m_mutex);
        const auto entry = m_timers.find(timer);
        if (entry == m_timers.end())
            return;
        running = entry->second;
        m_timers.erase(entry);
    }
    if (!running)
        return;
    QMetaObject::invokeMethod(running, [running] {
        if (running) {
            running->stop();
            running->deleteLater();
        }
    });
}

void OSTSystemClock::forget(OSTTimerId timer)
{
    QMutexLocker locker(&m_mutex);
    m_timers.erase(timer);
}

} // namespace ostrel
