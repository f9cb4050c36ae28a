#include "platform/OSTMainQueue.h"

#include "platform/OSTClock.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

namespace ostrel {

bool OSTMainQueue::isCurrent()
{
    const QCoreApplication *application = QCoreApplication::instance();
    return !application || QThread::currentThread() == application->thread();
}

void OSTMainQueue::async(std::function<void()> work)
{
    QCoreApplication *application = QCoreApplication::instance();
    if (!application) {
        work();
        return;
    }
    QMetaObject::invokeMethod(application, std::move(work), Qt::QueuedConnection);
}

void OSTMainQueue::sync(const std::function<void()> &work)
{
    if (isCurrent()) {
        work();
        return;
    }
    QMetaObject::invokeMethod(QCoreApplication::instance(), work, Qt::BlockingQueuedConnection);
}

void OSTMainQueue::after(double seconds, std::function<void()> work)
{
    QCoreApplication *application = QCoreApplication::instance();
    if (!application) {
        work();
        return;
    }
    OSTClock::current().schedule(seconds, application, std::move(work));
}

} // namespace ostrel
