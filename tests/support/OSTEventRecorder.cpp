#include "support/OSTEventRecorder.h"

#include "events/OSTEventHook.h"
#include "launch/OSTStartup.h"

#include <QMutexLocker>

namespace ostrel::test {

OSTEventRecorder::OSTEventRecorder()
{
    OSTStartup::connectNetworkStatistics();
    m_receiver = OSTEventHook::addReceiver([this](const std::shared_ptr<const OSTEvent> &event) {
        QMutexLocker locker(&m_mutex);
        m_events.push_back(event);
    });
}

OSTEventRecorder::~OSTEventRecorder()
{
    OSTEventHook::removeReceiver(m_receiver);
}

std::vector<QVariantMap> OSTEventRecorder::parametersOf(const QString &name, const QString &kind) const
{
    QMutexLocker locker(&m_mutex);
    std::vector<QVariantMap> found;
    for (const auto &event : m_events) {
        if (event->name() == name && (kind.isEmpty() || event->parameters().value(QStringLiteral("event")) == kind))
            found.push_back(event->parameters());
    }
    return found;
}

QStringList OSTEventRecorder::names() const
{
    QMutexLocker locker(&m_mutex);
    QStringList names;
    for (const auto &event : m_events)
        names << event->name();
    return names;
}

std::vector<QVariantMap> OSTEventRecorder::statistics(const QString &kind) const
{
    return parametersOf(QStringLiteral("$$OST Timing"), kind);
}

} // namespace ostrel::test
