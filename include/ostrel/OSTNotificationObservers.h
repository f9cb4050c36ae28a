#pragma once

#include <ostrel/OSTExport.h>

#include <QObject>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <functional>

namespace ostrel {

// Lets a host observe the SDK's notifications by name, for example OSTEventFiredNotification,
// whose dictionary holds the event's name, parameters and type under the OSTEventNotification…Key
// keys. Thread-safe.
//
//     auto token = OSTNotificationObservers::addObserver(OSTEventFiredNotification, window,
//         [](const QString &, const QVariantMap &event) { qDebug() << event; });
//     ...
//     OSTNotificationObservers::removeObserver(token);
class OSTREL_EXPORT OSTNotificationObservers {
public:
    // The notification's name and its dictionary: the object when it is one, else the user info.
    using Callback = std::function<void(const QString &name, const QVariantMap &dictionary)>;

    OSTNotificationObservers() = delete;

    // Calls `callback` for every notification called `name`. With a `context`, the callback runs
    // on the context's thread (queued when posted from another one) and stops when the context
    // is destroyed; without one it runs on the posting thread, which may be any SDK thread.
    static std::uint64_t addObserver(const QString &name, const QObject *context, Callback callback);
    static void removeObserver(std::uint64_t token);
};

} // namespace ostrel
