#pragma once

#include <QDeadlineTimer>
#include <QObject>
#include <QString>
#include <QThread>

#include <functional>
#include <memory>

namespace ostrel {

// A named thread with its own event loop that runs submitted work one item at a time, in order
// of submission. Objects that must live on the queue (network managers, timers) can be moved to
// context(). The destructor finishes the work already submitted, then stops the thread. Run on
// the queue itself (by work that drops the queue's last owner), it returns at once and the
// thread stops after that work; the queue must then not be used again, as after any destruction.
//
// At the end of the application every queue is stopped (stopAll): it finishes the work already
// submitted, destroys the objects made on it (a network manager ends its own thread there) and
// its thread ends, so that no SDK thread runs while the process's exit handlers tear down the
// libraries it uses. A stopped queue drops later work, including sync() calls.
class OSTSerialQueue {
public:
    explicit OSTSerialQueue(const QString &name);
    ~OSTSerialQueue();

    OSTSerialQueue(const OSTSerialQueue &) = delete;
    OSTSerialQueue &operator=(const OSTSerialQueue &) = delete;

    QString name() const;
    // Runs `work` later on the queue.
    void async(std::function<void()> work) const;
    // Runs `work` on the queue and waits for it; runs inline when called on the queue itself.
    void sync(const std::function<void()> &work) const;
    // Whether the calling thread is this queue's thread.
    bool isCurrent() const;
    // An object that lives on the queue's thread, usable as a parent or timer context.
    QObject *context() const { return m_context.get(); }
    QThread *thread() const { return m_thread.get(); }

    // Stops every queue once its submitted work is done, and waits for their threads until
    // `deadline`; queues made afterwards stop at once. Called on the main thread as the
    // application object is destroyed. Queues still running at the deadline are logged.
    static void stopAll(QDeadlineTimer deadline);
    // Adds work that every queue thread runs as it ends, before its queue counts as stopped: a
    // library with per-thread state releases it there while the process is still whole.
    static void addThreadEndHandler(std::function<void()> handler);

private:
    struct Lifetime;

    void registerQueue();
    void unregisterQueue();
    // Precondition: the registry lock is held.
    void requestStop();

    std::shared_ptr<Lifetime> m_lifetime;
    // Released, not reset, by the destructor: see there.
    std::unique_ptr<QThread> m_thread;
    std::unique_ptr<QObject> m_context;
};

} // namespace ostrel
