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

// Wraps a completion handed to code the SDK does not control (the host's delegate, the phone
// verification's network thread). The wrapper may be called on any thread and any number of
// times: `then` runs once, on the GUI thread (at once when already there), and only while
// `context` exists. Later calls are logged, naming `what`, and ignored.
template <typename... Args>
std::function<void(Args...)> ost_answerOnGuiThreadOnce(QObject *context, const QString &what,
                                                       std::type_identity_t<std::function<void(Args...)>> then)
{
    auto answered = std::make_shared<std::atomic<bool>>(false);
    return [answered, guard = QPointer<QObject>(context), what, then = std::move(then)](Args... args) {
        if (answered->exchange(true)) {
            OSTLogging::logWarning(QStringLiteral("%1 answered more than once; only the first answer counts"), what);
            return;
        }
        auto run = [guard, then, values = std::make_tuple(std::decay_t<Args>(args)...)] {
            if (guard)
                std::apply(then, values);
        };
        if (OSTMainQueue::isCurrent())
            run();
        else
            OSTMainQueue::async(std::move(run));
    };
}

} // namespace ostrel
