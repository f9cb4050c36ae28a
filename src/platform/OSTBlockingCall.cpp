#include "platform/OSTBlockingCall.h"

#include <QLoggingCategory>
#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>
#include <QWaitCondition>

#include <memory>

namespace ostrel {

namespace {

Q_LOGGING_CATEGORY(blockingCallLog, "ostrel.queues")

// One lock and one condition for every waiting call: such calls are rare and short, and the
// waiters must all hear when a target stops.
struct Waiting {
    QMutex mutex;
    QWaitCondition changed;
};

Waiting &waiting()
{
    // Never destroyed: threads may still wait here while the process's exit handlers run.
    static Waiting *instance = new Waiting;
    return *instance;
}

// Guarded by waiting().mutex.
enum class Stage { Posted, Running, Done, Abandoned };

} // namespace

void OSTBlockingCall::run(QObject *target, const std::function<void()> &work,
                          const std::function<bool()> &targetStopped, const QString &targetDescription)
{
    auto stage = std::make_shared<Stage>(Stage::Posted);
    // `work` is captured by reference: the waiter below outlives every use of it, because the
    // posted call either starts before the waiter gives up or never touches it.
    QMetaObject::invokeMethod(target, [stage, &work] {
        {
            QMutexLocker locker(&waiting().mutex);
            if (*stage == Stage::Abandoned)
                return;
            *stage = Stage::Running;
        }
        work();
        QMutexLocker locker(&waiting().mutex);
        *stage = Stage::Done;
        waiting().changed.wakeAll();
    }, Qt::QueuedConnection);

    QMutexLocker locker(&waiting().mutex);
    while (*stage != Stage::Done) {
        if (*stage == Stage::Posted && targetStopped()) {
            *stage = Stage::Abandoned;
            qCWarning(blockingCallLog).noquote() << "Dropped work for" << targetDescription;
            return;
        }
        waiting().changed.wait(&waiting().mutex);
    }
}

void OSTBlockingCall::wakeWaiters()
{
    QMutexLocker locker(&waiting().mutex);
    waiting().changed.wakeAll();
}

} // namespace ostrel
