#pragma once

#include "events/OSTEvent.h"

#include <QtGlobal>

#include <concepts>
#include <functional>
#include <memory>

namespace ostrel {

// The one place where every part of the SDK hands over an event it records. The event manager
// connects itself as a receiver (a debugging host or a test may listen beside it); while no
// receiver is connected, events are logged at debug level and dropped. Thread-safe: events may
// be sent from any thread, and each receiver is called on the sending thread, in the order
// they were added.
class OSTEventHook {
public:
    using Receiver = std::function<void(const std::shared_ptr<const OSTEvent> &event)>;

    OSTEventHook() = delete;

    using ReceiverId = quint64;

    // Adds a receiver; the returned id removes it again.
    static ReceiverId addReceiver(Receiver receiver);
    static void removeReceiver(ReceiverId id);
    static void sendEvent(const std::shared_ptr<const OSTEvent> &event);

    template <std::derived_from<OSTEvent> Event>
    static void sendEvent(const Event &event)
    {
        sendEvent(std::make_shared<const Event>(event));
    }
};

} // namespace ostrel
