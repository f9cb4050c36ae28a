#pragma once

#include <QObject>

#include <functional>

namespace ostrel {

// Runs work on the thread of another object and waits for it, like a blocking queued call, but
// gives up when that thread stops running queued work before it reached this call: at the end of
// the application the main thread and the serial queues stop, and a thread waiting on them must
// not wait forever. Threads waiting here are re-checked whenever wakeWaiters() is called.
class OSTBlockingCall {
public:
    OSTBlockingCall() = delete;

    // Posts `work` to `target`'s thread and waits until it has run, or until `targetStopped`
    // returns true while the work has not started (then it never runs, and a warning says the
    // work for `targetDescription` was dropped). Must not be called on `target`'s own thread.
    // `targetStopped` is read under a lock shared by all waiters: it must be cheap and must not
    // block.
    static void run(QObject *target, const std::function<void()> &work,
                    const std::function<bool()> &targetStopped, const QString &targetDescription);
    // Makes every waiting call read its `targetStopped` again; call it after a target stopped.
    static void wakeWaiters();
};

} // namespace ostrel
