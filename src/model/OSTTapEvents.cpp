#include "model/OSTTapEvents.h"

#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"
#include "model/OSTSelectionGroup.h"
#include "screen/OSTTextFieldDescription.h"

namespace ostrel {

namespace {

QString nameOf(const std::shared_ptr<const OSTAction> &action)
{
    return action ? action->name() : QString();
}

} // namespace

void OSTTapEvents::buttonTapped(const OSTScreen &screen, const QString &buttonKey,
                                const std::shared_ptr<const OSTAction> &action)
{
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForButton(buttonKey, nameOf(action), screen));
}

void OSTTapEvents::switchTapped(const OSTScreen &screen)
{
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForSwitch(screen));
}

void OSTTapEvents::inputReturned(const OSTScreen &screen, const OSTTextFieldDescription *field)
{
    if (!field)
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForPickerReturn(screen));
    else if (field->textType() == OSTTextFieldTypePhoneNumberPin && field->autoSubmits())
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForTextFieldPINMatch(screen));
    else
        OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForTextFieldReturn(screen));
}

void OSTTapEvents::selectionGroupTapped(const OSTScreen &screen, const OSTSelectionGroup &group,
                                        const QString &buttonName, const std::shared_ptr<const OSTAction> &action)
{
    const OSTInternalEvent::SelectionGroupTap tap{group.name(), buttonName,
                                                  group.valueForElementWithKey(buttonName).toString(), nameOf(action)};
    OSTEventHook::sendEvent(OSTInternalEvent::actionTappedEventForSelectionGroup(tap, screen));
}

} // namespace ostrel
