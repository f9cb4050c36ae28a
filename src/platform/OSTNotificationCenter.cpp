#include "platform/OSTNotificationCenter.h"

#include <QMutexLocker>

#include <algorithm>

namespace ostrel {

OSTNotificationCenter &OSTNotificationCenter::defaultCenter()
{
    // Never destroyed: threads still running at exit may post.
    static OSTNotificationCenter *center = new OSTNotificationCenter;
    return *center;
}

OSTObserverToken OSTNotificationCenter::addObserver(const QString &name, Handler handler,
                                                    const void *object)
{
    QMutexLocker locker(&m_mutex);
    const OSTObserverToken token = m_nextToken++;
    m_observers.push_back(std::make_shared<Observer>(Observer{token, name, object, std::move(handler)}));
    return token;
}

void OSTNotificationCenter::removeObserver(OSTObserverToken token)
{
    QMutexLocker locker(&m_mutex);
    const auto found = std::find_if(m_observers.begin(), m_observers.end(),
                                    [token](const auto &observer) { return observer->token == token; });
    if (found == m_observers.end())
        return;
    (*found)->removed = true;
    m_observers.erase(found);
}

void OSTNotificationCenter::post(const QString &name, const void *object, const QVariantMap &userInfo)
{
    post(OSTNotification{name, object, userInfo});
}

void OSTNotificationCenter::post(const OSTNotification &notification)
{
    std::vector<std::shared_ptr<Observer>> matching;
    {
        QMutexLocker locker(&m_mutex);
        for (const auto &observer : m_observers) {
            if (observer->name == notification.name
                && (!observer->object || observer->object == notification.object))
                matching.push_back(observer);
        }
    }
    for (const auto &observer : matching) {
        bool removed;
        {
            QMutexLocker locker(&m_mutex);
            removed = observer->removed;
        }
        if (!removed)
            observer->handler(notification);
    }
}

} // namespace ostrel
