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

OSTInternalEvent OSTInternalEvent::userEvent(const QString &name, const OSTTrackedItem *currentScreen)
{
    QVariantMap parameters;
    if (const auto flow = currentScreen ? currentScreen->trackedFlow() : nullptr) {
        parameters.insert(u"flow_key"_s, flow->key());
        parameters.insert(u"screen_key"_s, currentScreen->key());
    }
    return OSTInternalEvent(name, name, parameters);
}

OSTInternalEvent OSTInternalEvent::signupEvent(const OSTTrackedItem *currentScreen)
{
    return userEvent(OSTSignupEvent, currentScreen);
}

OSTInternalEvent OSTInternalEvent::loginEvent(const OSTTrackedItem *currentScreen)
{
    return userEvent(OSTLoginEvent, currentScreen);
}

OSTInternalEvent OSTInternalEvent::logoutEvent()
{
    return OSTInternalEvent(OSTLogoutEvent, OSTLogoutEvent);
}

OSTInternalEvent OSTInternalEvent::flowStartedEvent(const OSTTrackedItem &flow)
{
    QVariantMap parameters = flow.trackingParameters();
    parameters.insert(u"flow_key"_s, flow.key());
    return OSTInternalEvent(u"OST %1 Flow Start"_s.arg(flow.name()), OSTFlowStartedEvent, parameters);
}

OSTInternalEvent OSTInternalEvent::flowCompletedEvent(const OSTTrackedItem &flow, const OSTTrackedItem &screen)
{
    QVariantMap parameters = flow.trackingParameters();
    parameters.insert(u"flow_key"_s, flow.key());
    parameters.insert(u"screen_key"_s, screen.key());
    return OSTInternalEvent(u"OST %1 Flow Complete"_s.arg(flow.name()), OSTFlowCompletedEvent, parameters);
}

OSTInternalEvent OSTInternalEvent::screenDisplayedEvent(const OSTTrackedItem &screen)
{
    QVariantMap parameters = screen.trackingParameters();
    parameters.insert(u"experience_key"_s, screen.key());
    return OSTInternalEvent(u"OST %1 Displayed"_s.arg(screen.name()), OSTScreenDisplayedEvent, parameters);
}

OSTInternalEvent OSTInternalEvent::actionTappedEvent(const OSTTrackedItem &screen, const QVariantMap &action)
{
    QVariantMap parameters = screen.trackingParameters();
    parameters.insert(action);
    parameters.insert(u"experience_key"_s, screen.key());
    return OSTInternalEvent(u"OST %1 Action Tapped"_s.arg(screen.name()), OSTActionTappedEvent, parameters);
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForButton(const QString &buttonName, const QString &actionName,
                                                              const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, actionName},
                                      {u"action_name"_s, buttonName},
                                      {u"action_type"_s, u"button"_s},
                                      {u"button_id"_s, buttonName}});
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForSelectionGroup(const SelectionGroupTap &tap,
                                                                      const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, tap.actionName.isNull() ? u""_s : tap.actionName},
                                      {u"action_name"_s, tap.groupName},
                                      {u"action_type"_s, u"selectionGroup"_s},
                                      {u"button_id"_s, tap.elementName},
                                      {u"button_value"_s, tap.value.isNull() ? u""_s : tap.value}});
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForSwitch(const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, u""_s},
                                      {u"action_name"_s, u"switchTap"_s},
                                      {u"action_type"_s, u"switch"_s}});
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForPickerReturn(const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, u"next"_s},
                                      {u"action_name"_s, u"pickerReturn"_s},
                                      {u"action_type"_s, u"picker"_s}});
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForTextFieldReturn(const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, u"next"_s},
                                      {u"action_name"_s, u"textFieldReturn"_s},
                                      {u"action_type"_s, u"textField"_s}});
}

OSTInternalEvent OSTInternalEvent::actionTappedEventForTextFieldPINMatch(const OSTTrackedItem &screen)
{
    return actionTappedEvent(screen, {{u"action_id"_s, u"next"_s},
                                      {u"action_name"_s, u"pinMatch"_s},
                                      {u"action_type"_s, u"textField"_s}});
}

} // namespace ostrel
