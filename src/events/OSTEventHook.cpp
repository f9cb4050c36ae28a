#include "events/OSTEventHook.h"

#include "core/OSTLogging.h"

#include <QMutex>
#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

struct ReceiverSlot {
    QMutex mutex;
    OSTEventHook::Receiver receiver;
};

ReceiverSlot &receiverSlot()
{
    static ReceiverSlot slot;
    return slot;
}

} // namespace

void OSTEventHook::connectReceiver(Receiver receiver)
{
    ReceiverSlot &slot = receiverSlot();
    QMutexLocker locker(&slot.mutex);
    slot.receiver = std::move(receiver);
}

void OSTEventHook::sendEvent(const std::shared_ptr<const OSTEvent> &event)
{
    Receiver receiver;
    {
        ReceiverSlot &slot = receiverSlot();
        QMutexLocker locker(&slot.mutex);
        receiver = slot.receiver;
    }
    if (receiver)
        receiver(event);
    else
        OSTLogging::logDebug(u"No event manager yet; dropping event \"%1\": %2"_s, event->name(),
                             event->parameters());
}

} // namespace ostrel
