#include "platform/OSTURLOpener.h"

#include <QDesktopServices>
#include <QMutex>
#include <QMutexLocker>

namespace ostrel {

namespace {

struct HandlerSlot {
    QMutex mutex;
    OSTURLOpener::Handler handler;
};

HandlerSlot &handlerSlot()
{
    static HandlerSlot slot;
    return slot;
}

} // namespace

bool OSTURLOpener::openURL(const QUrl &url)
{
    Handler handler;
    {
        HandlerSlot &slot = handlerSlot();
        QMutexLocker locker(&slot.mutex);
        handler = slot.handler;
    }
    return handler ? handler(url) : QDesktopServices::openUrl(url);
}

void OSTURLOpener::setHandler(Handler handler)
{
    HandlerSlot &slot = handlerSlot();
    QMutexLocker locker(&slot.mutex);
    slot.handler = std::move(handler);
}

} // namespace ostrel
