#include "platform/OSTSerialQueue.h"

#include "platform/OSTBlockingCall.h"

#include <QLoggingCategory>
#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <atomic>
#include <vector>

namespace ostrel {

// What outlives the queue object: its thread may still finish after a queue released by its own
// work is gone.
struct OSTSerialQueue::Lifetime {
    std::atomic<bool> finished = false;
    bool stopRequested = false; // guarded by the registry lock
};

namespace {

Q_LOGGING_CATEGORY(serialQueueLog, "ostrel.queues")

// Every live queue, so that the end of the application can stop them all.
struct Registry {
    QMutex mutex;
    QWaitCondition threadFinished;
    std::vector<OSTSerialQueue *> queues;
    std::vector<std::function<void()>> threadEndHandlers;
    bool stopping = false;
};

Registry &registry()
{
    // Never destroyed: queue threads report their end here while exit handlers run.
    static Registry *instance = new Registry;
    return *instance;
}

void runThreadEndHandlers()
{
    std::vector<std::function<void()>> handlers;
    {
        QMutexLocker locker(&registry().mutex);
        handlers = registry().threadEndHandlers;
    }
    for (const auto &handler : handlers)
        handler();
}

// Objects made on a queue end on its thread as it stops: a network manager ends its own thread
// there and aborts its replies, instead of running on into the process's exit handlers.
void destroyChildren(QObject &context)
{
    const QObjectList children = context.children();
    qDeleteAll(children);
}

} // namespace

OSTSerialQueue::OSTSerialQueue(const QString &name)
    : m_lifetime(std::make_shared<Lifetime>()), m_thread(std::make_unique<QThread>()),
      m_context(std::make_unique<QObject>())
{
    m_thread->setObjectName(name);
    m_context->setObjectName(name);
    m_context->moveToThread(m_thread.get());
    // Runs on the queue's thread as its loop ends; no queued work runs after it.
    QObject::connect(m_thread.get(), &QThread::finished, [lifetime = m_lifetime] {
        runThreadEndHandlers();
        lifetime->finished = true;
        {
            QMutexLocker locker(&registry().mutex);
            registry().threadFinished.wakeAll();
        }
        OSTBlockingCall::wakeWaiters();
    });
    m_thread->start();
    registerQueue();
}

OSTSerialQueue::~OSTSerialQueue()
{
    unregisterQueue();
    // Queued behind the work already submitted, so that work still runs; the context (and any
    // children made on the queue) is destroyed on its own thread before the loop stops.
    QObject *context = m_context.release();
    QThread *thread = m_thread.release();
    QMetaObject::invokeMethod(context, [context, thread] {
        delete context;
        thread->quit();
    }, Qt::QueuedConnection);
    if (QThread::currentThread() == thread) {
        // The last owner let go from inside the queue's own work (a shared object whose final
        // reference was held by a task on its queue). A thread cannot wait for itself: it stops
        // once the current work returns, and its object is deleted by the thread that made it.
        QObject::connect(thread, &QThread::finished, thread, &QObject::deleteLater);
        return;
    }
    thread->wait();
    // A queue stopped at the end of the application never ran the call above: its context is
    // left to the end of the process rather than destroyed away from its thread.
    delete thread;
}

void OSTSerialQueue::registerQueue()
{
    QMutexLocker locker(&registry().mutex);
    registry().queues.push_back(this);
    if (registry().stopping)
        requestStop();
}

void OSTSerialQueue::unregisterQueue()
{
    QMutexLocker locker(&registry().mutex);
    std::erase(registry().queues, this);
}

void OSTSerialQueue::requestStop()
{
    if (m_lifetime->stopRequested)
        return;
    m_lifetime->stopRequested = true;
    QMetaObject::invokeMethod(m_context.get(), [context = m_context.get(), thread = m_thread.get()] {
        destroyChildren(*context);
        thread->quit();
    }, Qt::QueuedConnection);
}

void OSTSerialQueue::stopAll(QDeadlineTimer deadline)
{
    QMutexLocker locker(&registry().mutex);
    registry().stopping = true;
    for (OSTSerialQueue *queue : registry().queues)
        queue->requestStop();
    const auto stillRunning = [] {
        QStringList names;
        for (const OSTSerialQueue *queue : registry().queues) {
            if (!queue->m_lifetime->finished)
                names.append(queue->name());
        }
        return names;
    };
    while (!stillRunning().isEmpty()) {
        if (!registry().threadFinished.wait(&registry().mutex, deadline)) {
            qCWarning(serialQueueLog).noquote()
                << "The application ended while these queues still had work:" << stillRunning().join(u", ");
            return;
        }
    }
}

void OSTSerialQueue::addThreadEndHandler(std::function<void()> handler)
{
    QMutexLocker locker(&registry().mutex);
    registry().threadEndHandlers.push_back(std::move(handler));
}

QString OSTSerialQueue::name() const
{
    return m_thread->objectName();
}

void OSTSerialQueue::async(std::function<void()> work) const
{
    QMetaObject::invokeMethod(m_context.get(), std::move(work), Qt::QueuedConnection);
}

void OSTSerialQueue::sync(const std::function<void()> &work) const
{
    if (isCurrent()) {
        work();
        return;
    }
    OSTBlockingCall::run(m_context.get(), work, [lifetime = m_lifetime] { return lifetime->finished.load(); },
                         QStringLiteral("the stopped queue ") + name());
}

bool OSTSerialQueue::isCurrent() const
{
    return QThread::currentThread() == m_thread.get();
}

} // namespace ostrel
