#include <ostrel/OSTNotificationObservers.h>

#include "platform/OSTNotificationCenter.h"

#include <QMetaObject>
#include <QPointer>

namespace ostrel {

namespace {

QVariantMap dictionaryOf(const OSTNotification &notification)
{
    return notification.objectDictionary.isEmpty() ? notification.userInfo : notification.objectDictionary;
}

} // namespace

std::uint64_t OSTNotificationObservers::addObserver(const QString &name, const QObject *context, Callback callback)
{
    if (!context) {
        return OSTNotificationCenter::defaultCenter().addObserver(
            name, [callback](const OSTNotification &notification) { callback(notification.name, dictionaryOf(notification)); });
    }
    const QPointer<const QObject> guard(context);
    return OSTNotificationCenter::defaultCenter().addObserver(
        name, [guard, callback](const OSTNotification &notification) {
            if (!guard)
                return;
            QMetaObject::invokeMethod(
                const_cast<QObject *>(guard.data()),
                [callback, name = notification.name, dictionary = dictionaryOf(notification)] { callback(name, dictionary); },
                Qt::AutoConnection);
        });
}

void OSTNotificationObservers::removeObserver(std::uint64_t token)
{
    OSTNotificationCenter::defaultCenter().removeObserver(token);
}

} // namespace ostrel
