#pragma once

#include "model/OSTValidationItem.h"
#include "screen/OSTSwitchDescription.h"
#include "widgets/OSTView.h"

namespace ostrel {

class OSTSwitchControl;

// The "toggleSwitch" button element: an on/off switch that takes part in validation like a
// toggle button. Its box, starting state and colours come from its description
// (OSTSwitchDescription); assistive technology reads its accessibility label, else its key.
//
// The element shrinks to the switch's natural size around the centre the layout gave it
// (frameInBox), whenever its box is set: at construction and at every relayout.
// A required switch is valid while on; an optional one always.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTSwitch final : public OSTView, public OSTValidationItem {
    Q_OBJECT

public:
    OSTSwitch(const QRect &frame, const OSTSwitchDescription &description, QWidget *parent = nullptr);

    // The switch's natural size centred in `box`: the geometry it takes for that layout box.
    static QRect frameInBox(const QRect &box);

    OSTSwitchControl *internalSwitch() const { return m_internalSwitch; }
    bool isOn() const;

    // A boolean of the on state.
    QVariant value() const override;
    // Sets the on state without animation; the model is deliberately not told.
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return true; }

signals:
    // The user turned the switch (touch or keyboard), after the model was updated.
    void tapped();

protected:
    void modelDidChange() override;

private:
    void customize(const OSTSwitchDescription &description);
    void userChangedValue();
    void updateModelValidity();

    OSTSwitchControl *const m_internalSwitch; // child of the container
};

} // namespace ostrel
