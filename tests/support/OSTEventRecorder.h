#pragma once

#include "events/OSTEvent.h"
#include "events/OSTEventHook.h"

#include <QMutex>
#include <QStringList>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <vector>

namespace ostrel::test {

// Connects itself to OSTEventHook for its lifetime and keeps every event the SDK hands over,
// from any thread.
class OSTEventRecorder {
public:
    OSTEventRecorder();
    ~OSTEventRecorder();
    OSTEventRecorder(const OSTEventRecorder &) = delete;
    OSTEventRecorder &operator=(const OSTEventRecorder &) = delete;

    // Parameters of the events called `name`, oldest first; with `kind`, only statistical events
    // whose "event" parameter is `kind`.
    std::vector<QVariantMap> parametersOf(const QString &name, const QString &kind = {}) const;
    // The names of every event, oldest first.
    QStringList names() const;
    // Statistical events ("$$OST Timing") of one kind, e.g. "launch" or "image_download".
    std::vector<QVariantMap> statistics(const QString &kind) const;

private:
    mutable QMutex m_mutex;
    OSTEventHook::ReceiverId m_receiver = 0;
    std::vector<std::shared_ptr<const OSTEvent>> m_events;
};

} // namespace ostrel::test
