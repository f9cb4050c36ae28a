#pragma once

#include <QString>

#include <memory>

namespace ostrel {

class OSTAction;
class OSTScreen;
class OSTSelectionGroup;
class OSTTextFieldDescription;

// What the user tapped on a screen, as either toolkit reports it to the event queue: the action
// events of buttons, switches, an input's return and selection groups. Any thread that may send
// events; the toolkits call it on the GUI thread.
class OSTTapEvents {
public:
    OSTTapEvents() = delete;

    static void buttonTapped(const OSTScreen &screen, const QString &buttonKey,
                             const std::shared_ptr<const OSTAction> &action);
    static void switchTapped(const OSTScreen &screen);
    // Return in `field`, or a picker's done button or return key when `field` is null. A PIN field
    // that submits itself once complete reports a PIN match.
    static void inputReturned(const OSTScreen &screen, const OSTTextFieldDescription *field);
    static void selectionGroupTapped(const OSTScreen &screen, const OSTSelectionGroup &group,
                                     const QString &buttonName, const std::shared_ptr<const OSTAction> &action);
};

} // namespace ostrel
