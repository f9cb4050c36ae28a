#include "platform/OSTSerialQueue.h"

#include <QMetaObject>

namespace ostrel {

OSTSerialQueue::OSTSerialQueue(const QString &name)
    : m_thread(std::make_unique<QThread>()), m_context(std::make_unique<QObject>())
{
    m_thread->setObjectName(name);
    m_context->setObjectName(name);
    m_context->moveToThread(m_thread.get());
    m_thread->start();
}

OSTSerialQueue::~OSTSerialQueue()
{
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
    delete thread;
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
    QMetaObject::invokeMethod(m_context.get(), work, Qt::BlockingQueuedConnection);
}

bool OSTSerialQueue::isCurrent() const
{
    return QThread::currentThread() == m_thread.get();
}

} // namespace ostrel
