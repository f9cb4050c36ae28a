#pragma once

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

private:
    // Released, not reset, by the destructor: see there.
    std::unique_ptr<QThread> m_thread;
    std::unique_ptr<QObject> m_context;
};

} // namespace ostrel
