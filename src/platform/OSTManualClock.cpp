#include "platform/OSTManualClock.h"

#include <QMetaObject>
#include <QMutexLocker>
#include <QThread>

namespace ostrel {

OSTManualClock::OSTManualClock(double now) : m_wallOffset(now) {}

double OSTManualClock::now() const
{
    QMutexLocker locker(&m_mutex);
    return m_wallOffset + m_monotonic;
}

double OSTManualClock::monotonicNow() const
{
    QMutexLocker locker(&m_mutex);
    return m_monotonic;
}

OSTTimerId OSTManualClock::schedule(double seconds, QObject *context, std::function<void()> callback)
{
    if (!context)
        return 0;
    QMutexLocker locker(&m_mutex);
    const OSTTimerId id = m_nextId++;
    const double due = m_monotonic + std::max(seconds, 0.0);
    m_timers.emplace(DueKey{due, id}, PendingTimer{context, std::move(callback)});
    return id;
}

void OSTManualClock::cancel(OSTTimerId timer)
{
    QMutexLocker locker(&m_mutex);
    std::erase_if(m_timers, [timer](const auto &entry) { return entry.first.second == timer; });
}

void OSTManualClock::advance(double seconds)
{
    double target;
    {
        QMutexLocker locker(&m_mutex);
        target = m_monotonic + std::max(seconds, 0.0);
    }
    for (;;) {
        PendingTimer timer;
        {
            QMutexLocker locker(&m_mutex);
            const auto first = m_timers.begin();
            if (first == m_timers.end() || first->first.first > target) {
                m_monotonic = target;
                return;
            }
            m_monotonic = std::max(m_monotonic, first->first.first);
            timer = std::move(first->second);
            m_timers.erase(first);
        }
        if (!timer.context)
            continue;
        if (timer.context->thread() == QThread::currentThread())
            timer.callback();
        else
            QMetaObject::invokeMethod(timer.context, std::move(timer.callback));
    }
}

void OSTManualClock::setNow(double now)
{
    QMutexLocker locker(&m_mutex);
    m_wallOffset = now - m_monotonic;
}

int OSTManualClock::pendingTimerCount() const
{
    QMutexLocker locker(&m_mutex);
    return static_cast<int>(m_timers.size());
}

} // namespace ostrel
