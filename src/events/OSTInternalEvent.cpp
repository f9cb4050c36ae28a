#include "events/OSTInternalEvent.h"

#include <ostrel/OSTConstants.h>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTInternalEvent::OSTInternalEvent(const QString &name, const QString &type, const QVariantMap &parameters)
    : OSTEvent(name, markedAutomatic(parameters)), m_type(type)
{
}

QVariantMap OSTInternalEvent::userInfo() const
{
    return {{OSTEventNotificationNameKey, name()},
            {OSTEventNotificationParametersKey, parameters()},
            {OSTEventNotificationTypeKey, m_type}};
}

OSTInternalEvent OSTInternalEvent::sessionStartedEvent(double sessionDifference, SessionKind kind)
{
    const bool isLaunch = kind == SessionKind::Launch;
    return OSTInternalEvent(OSTSessionStartedEvent, OSTSessionStartedEvent,
                            {{u"session_foreground"_s, isLaunch ? 0 : 1},
                             {u"session_launch"_s, isLaunch},
                             {u"ost_time_since_last_session"_s, QString::asprintf("%f", sessionDifference)}});
}

} // namespace ostrel
