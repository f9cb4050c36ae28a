#include "platform/OSTURLOpener.h"

#include "platform/OSTLinkReceiver.h"

#include <QDesktopServices>
#include <QMutex>
#include <QMutexLocker>

#include <memory>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QStringList linkSchemes{u"http"_s, u"https"_s};

struct HandlerSlot {
    QMutex mutex;
    OSTURLOpener::Handler handler;
};

HandlerSlot &handlerSlot()
{
    static HandlerSlot slot;
    return slot;
}

// GUI thread only.
std::unique_ptr<OSTLinkReceiver> &linkReceiverObject()
{
    static std::unique_ptr<OSTLinkReceiver> object;
    return object;
}

void installLinkHandlers(OSTLinkReceiver *object)
{
    for (const QString &scheme : linkSchemes)
        QDesktopServices::setUrlHandler(scheme, object, "openLink");
}

void removeLinkHandlers()
{
    for (const QString &scheme : linkSchemes)
        QDesktopServices::unsetUrlHandler(scheme);
}

// The desktop itself, past the link receiver.
bool openOnDesktop(const QUrl &url)
{
    OSTLinkReceiver *object = linkReceiverObject().get();
    if (object)
        removeLinkHandlers();
    const bool opened = QDesktopServices::openUrl(url);
    if (object)
        installLinkHandlers(object);
    return opened;
}

} // namespace

bool OSTURLOpener::openURL(const QUrl &url)
{
    if (!url.isValid())
        return false;
    Handler handler;
    {
        HandlerSlot &slot = handlerSlot();
        QMutexLocker locker(&slot.mutex);
        handler = slot.handler;
    }
    return handler ? handler(url) : openOnDesktop(url);
}

void OSTURLOpener::setHandler(Handler handler)
{
    HandlerSlot &slot = handlerSlot();
    QMutexLocker locker(&slot.mutex);
    slot.handler = std::move(handler);
}

void OSTURLOpener::setLinkReceiver(Handler receiver)
{
    std::unique_ptr<OSTLinkReceiver> &object = linkReceiverObject();
    if (!receiver) {
        if (object)
            removeLinkHandlers();
        object.reset();
        return;
    }
    if (!object) {
        object = std::make_unique<OSTLinkReceiver>();
        object->fallback = [](const QUrl &url) { openOnDesktop(url); };
        installLinkHandlers(object.get());
    }
    object->receiver = std::move(receiver);
}

} // namespace ostrel
