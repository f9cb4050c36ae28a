#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTPickerWheel.h"
#include "screen/OSTToolbarSettings.h"
#include "screen/OSTValidationSettings.h"

#include <QMargins>

#include <memory>

namespace ostrel {

// A picker ("inputs" with a "picker" object): a box showing the choice, with a wheel below it.
//
//   the box         an image (OSTImageDescription) of the picker's properties without the drop
//                   shadow, which the picker casts itself ("objectShadow")
//   "text"          the label showing the choice (OSTLabelDescription)
//   "contentInsets" four numbers (ost_contentInsetsOf); the picker's default otherwise
//   "toolbar"       the wheel's bar; "inputOrder" the position in the Return chain
//   "picker"        the wheel (OSTPickerWheel)
//
// Always an input of the screen's validation. Immutable; GUI thread to read (fonts).
class OSTPickerDescription : public OSTElementDescription {
public:
    OSTPickerDescription(const QString &key, const QVariantMap &properties);
    ~OSTPickerDescription() override;

    const std::shared_ptr<const OSTImageDescription> &background() const { return m_background; }
    const std::shared_ptr<const OSTLabelDescription> &text() const { return m_text; }
    const std::optional<QMargins> &contentInsets() const { return m_contentInsets; }
    const std::optional<OSTToolbarSettings> &toolbar() const { return m_toolbar; }
    int inputOrder() const { return m_inputOrder; }
    const OSTPickerWheel &wheel() const { return m_wheel; }
    const OSTValidationSettings &validation() const { return m_validation; }

private:
    const std::shared_ptr<const OSTImageDescription> m_background;
    const std::shared_ptr<const OSTLabelDescription> m_text;
    const std::optional<QMargins> m_contentInsets;
    const std::optional<OSTToolbarSettings> m_toolbar;
    const int m_inputOrder;
    const OSTPickerWheel m_wheel;
    const OSTValidationSettings m_validation;
};

} // namespace ostrel
