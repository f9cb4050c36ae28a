#include "events/OSTEventHook.h"

#include "core/OSTLogging.h"

#include <QMutex>
#include <QMutexLocker>

#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

struct Receivers {
    QMutex mutex;
    std::vector<std::pair<OSTEventHook::ReceiverId, OSTEventHook::Receiver>> list;
    OSTEventHook::ReceiverId nextId = 1;
};

Receivers &receivers()
{
    // Never destroyed: events may still be handed over from other threads at exit.
    static Receivers *all = new Receivers;
    return *all;
}

} // namespace

OSTEventHook::ReceiverId OSTEventHook::addReceiver(Receiver receiver)
{
    Receivers &all = receivers();
    QMutexLocker locker(&all.mutex);
    const ReceiverId id = all.nextId++;
    all.list.emplace_back(id, std::move(receiver));
    return id;
}

void OSTEventHook::removeReceiver(ReceiverId id)
{
    Receivers &all = receivers();
    QMutexLocker locker(&all.mutex);
    std::erase_if(all.list, [id](const auto &entry) { return entry.first == id; });
}

void OSTEventHook::sendEvent(const std::shared_ptr<const OSTEvent> &event)
{
    std::vector<Receiver> current;
    {
        Receivers &all = receivers();
        QMutexLocker locker(&all.mutex);
        for (const auto &entry : all.list)
            current.push_back(entry.second);
    }
    if (current.empty()) {
        OSTLogging::logDebug(u"No event manager yet; dropping event \"%1\": %2"_s, event->name(),
                             event->parameters());
        return;
    }
    for (const Receiver &receiver : current)
        receiver(event);
}

} // namespace ostrel
