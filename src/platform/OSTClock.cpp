#include "platform/OSTClock.h"

#include "platform/OSTSystemClock.h"

#include <QMutex>
#include <QMutexLocker>

#include <vector>

namespace ostrel {

namespace {

struct ClockSlot {
    QMutex mutex;
    std::shared_ptr<OSTClock> clock = std::make_shared<OSTSystemClock>();
};

ClockSlot &clockSlot()
{
    // Never destroyed: threads still running at exit keep reading the clock.
    static ClockSlot *slot = new ClockSlot;
    return *slot;
}

} // namespace

QDateTime OSTClock::dateTimeNow() const
{
    return QDateTime::fromMSecsSinceEpoch(qint64((now() + referenceDateOffset) * 1000.0), Qt::UTC);
}

std::shared_ptr<OSTClock> OSTClock::currentShared()
{
    ClockSlot &slot = clockSlot();
    QMutexLocker locker(&slot.mutex);
    return slot.clock;
}

OSTClock &OSTClock::current()
{
    return *currentShared();
}

void OSTClock::setCurrent(std::shared_ptr<OSTClock> clock)
{
    ClockSlot &slot = clockSlot();
    QMutexLocker locker(&slot.mutex);
    // Clocks are few and tiny; keeping every replaced one alive makes references returned by
    // current() safe for the life of the process.
    static auto *retired = new std::vector<std::shared_ptr<OSTClock>>;
    retired->push_back(slot.clock);
    slot.clock = clock ? std::move(clock) : std::make_shared<OSTSystemClock>();
}

} // namespace ostrel
