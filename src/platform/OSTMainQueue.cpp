#include "platform/OSTMainQueue.h"

#include "platform/OSTBlockingCall.h"
#include "platform/OSTClock.h"
#include "platform/OSTSerialQueue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <atomic>
#include <cstdlib>

namespace ostrel {

namespace {

std::atomic<bool> applicationEnded = false;

// How long the end of the application waits for the serial queues' last work.
constexpr int queueDrainMilliseconds = 3000;

void shutDownWithTheApplication()
{
    qAddPostRoutine(&OSTMainQueue::shutDown);
    OSTMainQueue::shutDownBeforeExitHandlers();
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(shutDownWithTheApplication)

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
    OSTBlockingCall::run(QCoreApplication::instance(), work, [] { return applicationEnded.load(); },
                         QStringLiteral("the main thread: the application has ended"));
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

void OSTMainQueue::shutDownBeforeExitHandlers()
{
    std::atexit(&OSTMainQueue::shutDown);
}

void OSTMainQueue::shutDown()
{
    applicationEnded = true;
    OSTBlockingCall::wakeWaiters();
    OSTSerialQueue::stopAll(QDeadlineTimer(queueDrainMilliseconds));
}

} // namespace ostrel
