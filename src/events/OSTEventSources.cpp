#include "events/OSTEventSources.h"

#include <QMutex>
#include <QMutexLocker>

namespace ostrel {

namespace {

struct SourceSlot {
    QMutex mutex;
    OSTEventSources::Sources sources;
};

SourceSlot &sourceSlot()
{
    static SourceSlot slot;
    return slot;
}

} // namespace

void OSTEventSources::connect(Sources sources)
{
    SourceSlot &slot = sourceSlot();
    QMutexLocker locker(&slot.mutex);
    slot.sources = std::move(sources);
}

OSTEventSources::Sources OSTEventSources::current()
{
    SourceSlot &slot = sourceSlot();
    QMutexLocker locker(&slot.mutex);
    return slot.sources;
}

} // namespace ostrel
