#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTValidationSettings.h"

#include <QColor>

namespace ostrel {

// A switch ("buttons" with "buttonType" "toggleSwitch"), drawn at its natural size in the middle
// of its frame:
//
//   "defaultState"                               "pressed" starts it on
//   "onTintColor", "tintColor", "thumbTintColor"  hexadecimal colours; invalid (the control's own)
//                                                 when absent
//
// Always an input of the screen's validation. Immutable.
class OSTSwitchDescription : public OSTElementDescription {
public:
    OSTSwitchDescription(const QString &key, const QVariantMap &properties);

    bool isInitiallyOn() const { return m_initiallyOn; }
    const QColor &onTintColor() const { return m_onTintColor; }
    const QColor &tintColor() const { return m_tintColor; }
    const QColor &thumbTintColor() const { return m_thumbTintColor; }
    const OSTValidationSettings &validation() const { return m_validation; }

private:
    const bool m_initiallyOn;
    const QColor m_onTintColor;
    const QColor m_tintColor;
    const QColor m_thumbTintColor;
    const OSTValidationSettings m_validation;
};

} // namespace ostrel
