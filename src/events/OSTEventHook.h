#pragma once

#include "events/OSTEvent.h"

#include <concepts>
#include <functional>
#include <memory>

namespace ostrel {

// The one place where every part of the SDK hands over an event it records. The event manager
// connects itself as the receiver; while no receiver is connected, events are logged at debug
// level and dropped. Thread-safe: events may be sent from any thread, and the receiver is
// called on the sending thread.
class OSTEventHook {
public:
    using Receiver = std::function<void(const std::shared_ptr<const OSTEvent> &event)>;

    OSTEventHook() = delete;

    // Replaces the receiver; an empty function disconnects it.
    static void connectReceiver(Receiver receiver);
    static void sendEvent(const std::shared_ptr<const OSTEvent> &event);

    template <std::derived_from<OSTEvent> Event>
    static void sendEvent(const Event &event)
    {
        sendEvent(std::make_shared<const Event>(event));
    }
};

} // namespace ostrel
