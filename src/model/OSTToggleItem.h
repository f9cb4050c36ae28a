#pragma once

#include "model/OSTSelectionGroupMember.h"
#include "model/OSTValidationItem.h"

namespace ostrel {

// A button as a validation item and a selection group member, whichever toolkit draws it. A
// toggle's value is whether it is selected (a plain button has none); a restored value selects or
// clears it; a toggle is valid while selected, unless it is optional. Adopted by both toolkits'
// buttons next to their Qt base, which answer the three questions below. GUI thread only.
class OSTToggleItem : public OSTValidationItem, public OSTSelectionGroupMember {
public:
    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return true; }

    bool isMemberSelected() const override { return isSelected(); }
    void setMemberSelected(bool selected) override { setSelected(selected); }

protected:
    virtual bool isToggleButton() const = 0;
    virtual bool isSelected() const = 0;
    virtual void setSelected(bool selected) = 0;

    // A tap changed the selection: a toggle's validity and value follow it.
    void toggleTapped();
    void modelDidChange() override;

private:
    void updateToggleValidity();
};

} // namespace ostrel
