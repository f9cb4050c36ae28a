#pragma once

// The SDK's exported names: notifications and their user-info keys, the names events carry on
// the wire, and the frame attribute names of the layout engine.

#include <QString>

namespace ostrel {

// Posted on OSTNotificationCenter::defaultCenter() for every event the SDK records.
inline const QString OSTEventFiredNotification = QStringLiteral("com.ostrelhq.Ostrel.event.fired");
inline const QString OSTEventNotificationNameKey = QStringLiteral("OSTEventNotificationName");
inline const QString OSTEventNotificationParametersKey = QStringLiteral("OSTEventNotificationParameters");
inline const QString OSTEventNotificationTypeKey = QStringLiteral("OSTEventNotificationType");
// Posted on the main thread when network reachability changes.
inline const QString OSTReachabilityDidChangeNotification =
    QStringLiteral("com.ostrelhq.Ostrel.reachability.change");

inline const QString OSTSessionStartedEvent = QStringLiteral("OST Session Start");
inline const QString OSTSignupEvent = QStringLiteral("OST Signup");
inline const QString OSTLoginEvent = QStringLiteral("OST Login");
inline const QString OSTLogoutEvent = QStringLiteral("OST Logout");
inline const QString OSTFlowStartedEvent = QStringLiteral("OST Flow Start");
inline const QString OSTFlowCompletedEvent = QStringLiteral("OST Flow Complete");
inline const QString OSTScreenDisplayedEvent = QStringLiteral("OST Displayed");
inline const QString OSTActionTappedEvent = QStringLiteral("OST Action Tapped");

inline const QString OSTLayoutElementXAttributeKey = QStringLiteral("x");
inline const QString OSTLayoutElementYAttributeKey = QStringLiteral("y");
inline const QString OSTLayoutElementWidthAttributeKey = QStringLiteral("width");
inline const QString OSTLayoutElementHeightAttributeKey = QStringLiteral("height");

} // namespace ostrel
