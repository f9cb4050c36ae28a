#pragma once

#include "events/OSTEvent.h"
#include "events/OSTTrackedItem.h"

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

    // Sign-up and log-in name the flow and screen on display when that screen belongs to a flow;
    // `currentScreen` is null when nothing is on display.
    static OSTInternalEvent signupEvent(const OSTTrackedItem *currentScreen);
    static OSTInternalEvent loginEvent(const OSTTrackedItem *currentScreen);
    static OSTInternalEvent logoutEvent();

    static OSTInternalEvent flowStartedEvent(const OSTTrackedItem &flow);
    static OSTInternalEvent flowCompletedEvent(const OSTTrackedItem &flow, const OSTTrackedItem &screen);
    static OSTInternalEvent screenDisplayedEvent(const OSTTrackedItem &screen);

    // Taps: a button (named `buttonName`, whose action is `actionName`), an element of a
    // selection group, a switch, and the return keys of pickers and text fields.
    static OSTInternalEvent actionTappedEventForButton(const QString &buttonName, const QString &actionName,
                                                       const OSTTrackedItem &screen);
    struct SelectionGroupTap {
        QString groupName;
        QString elementName;
        QString value;
        QString actionName;
    };
    static OSTInternalEvent actionTappedEventForSelectionGroup(const SelectionGroupTap &tap,
                                                               const OSTTrackedItem &screen);
    static OSTInternalEvent actionTappedEventForSwitch(const OSTTrackedItem &screen);
    static OSTInternalEvent actionTappedEventForPickerReturn(const OSTTrackedItem &screen);
    static OSTInternalEvent actionTappedEventForTextFieldReturn(const OSTTrackedItem &screen);
    static OSTInternalEvent actionTappedEventForTextFieldPINMatch(const OSTTrackedItem &screen);

private:
    static OSTInternalEvent userEvent(const QString &name, const OSTTrackedItem *currentScreen);
    static OSTInternalEvent actionTappedEvent(const OSTTrackedItem &screen, const QVariantMap &action);

    QString m_type;
};

} // namespace ostrel
