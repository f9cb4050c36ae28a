#pragma once

#include "events/OSTEvent.h"

namespace ostrel {

// A milestone of the SDK (a session, a sign-up, a screen shown...). Besides its wire name it
// carries a type, one of the exported event-name constants, and it is announced to the host.
class OSTInternalEvent : public OSTEvent {
public:
    OSTInternalEvent(const QString &name, const QString &type, const QVariantMap &parameters = {});

    QString type() const { return m_type; }
    // What the host receives with OSTEventFiredNotification: the name, parameters and type.
    QVariantMap userInfo() const;

    // A new session, `sessionDifference` seconds after the previous one went to the background;
    // `kind` tells whether it also starts a new launch.
    enum class SessionKind { Foreground, Launch };
    static OSTInternalEvent sessionStartedEvent(double sessionDifference, SessionKind kind);

private:
    QString m_type;
};

} // namespace ostrel
