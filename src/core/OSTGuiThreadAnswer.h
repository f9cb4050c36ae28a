#pragma once

#include "core/OSTLogging.h"
#include "platform/OSTMainQueue.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <atomic>
#include <functional>
#include <memory>
#include <tuple>
#include <type_traits>

namespace ostrel {

// How an answer given on the GUI thread itself reaches the caller.
enum class OSTAnswerDelivery {
    AtOnce, // run within the answering call: a synchronous answer is seen as one
    Posted, // always on a later turn of the event loop, so an answer can never re-enter its caller
};

// Wraps a completion handed to code the SDK does not control (the host's delegate, a social
// log-in adapter, the phone verification's network thread). The wrapper may be called on any
// thread and any number of times: `then` runs once, on the GUI thread, and only while `context`
// exists (null: no such condition). Later calls are logged, naming `what`, and ignored.
template <typename... Args>
std::function<void(Args...)> ost_answerOnGuiThreadOnce(QObject *context, const QString &what,
                                                       OSTAnswerDelivery delivery,
                                                       std::type_identity_t<std::function<void(Args...)>> then)
{
    auto answered = std::make_shared<std::atomic<bool>>(false);
    return [answered, guarded = context != nullptr, guard = QPointer<QObject>(context), what, delivery,
            then = std::move(then)](Args... args) {
        if (answered->exchange(true)) {
            OSTLogging::logWarning(QStringLiteral("%1 answered more than once; only the first answer counts"), what);
            return;
        }
        auto run = [guarded, guard, then, values = std::make_tuple(std::decay_t<Args>(args)...)] {
            if (!guarded || guard)
                std::apply(then, values);
        };
        if (delivery == OSTAnswerDelivery::AtOnce && OSTMainQueue::isCurrent())
            run();
        else
            OSTMainQueue::async(std::move(run));
    };
}

} // namespace ostrel
