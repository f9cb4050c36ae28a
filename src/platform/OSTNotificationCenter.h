#pragma once

#include <QMutex>
#include <QString>
#include <QVariantMap>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace ostrel {

struct OSTNotification {
    QString name;
    // The sender, compared by address only; never dereferenced by the center.
    const void *object = nullptr;
    QVariantMap userInfo;
    // The object's contents when the object is a dictionary (as for the event notification), so
    // that observers outside the SDK can read it without knowing the object's type.
    QVariantMap objectDictionary = {};
};

using OSTObserverToken = std::uint64_t;

// Name-based broadcast within the process. Posting calls every matching observer synchronously on
// the posting thread, in order of registration. Observers may add or remove observers (also
// themselves) while being called: a removed observer is not called again, one added during a
// post is first called by the next post. Thread-safe.
class OSTNotificationCenter {
public:
    using Handler = std::function<void(const OSTNotification &)>;

    OSTNotificationCenter() = default;
    OSTNotificationCenter(const OSTNotificationCenter &) = delete;
    OSTNotificationCenter &operator=(const OSTNotificationCenter &) = delete;

    static OSTNotificationCenter &defaultCenter();

    // Observes notifications called `name`; when `object` is non-null only those posted with that
    // object. Returns the token that removes the observer.
    OSTObserverToken addObserver(const QString &name, Handler handler, const void *object = nullptr);
    void removeObserver(OSTObserverToken token);

    void post(const QString &name, const void *object = nullptr, const QVariantMap &userInfo = {});
    void post(const OSTNotification &notification);

private:
    struct Observer {
        OSTObserverToken token;
        QString name;
        const void *object;
        Handler handler;
        bool removed = false;
    };

    mutable QMutex m_mutex;
    OSTObserverToken m_nextToken = 1;
    std::vector<std::shared_ptr<Observer>> m_observers;
};

} // namespace ostrel
