#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTImageDescription.h"
#include "screen/OSTTextLook.h"
#include "screen/OSTValidationSettings.h"

#include <memory>

namespace ostrel {

class OSTAction;

// A button ("buttons"), a toggle button ("buttonType" "toggle") or a picture chooser
// ("buttonType" "imageUpload"). Its looks come from "states":
//
//   "normal"    laid over the button's own properties (the state wins)
//   "pressed"   laid over the normal look; shown while pressed, or while a toggle is on
//   "disabled"  laid over the normal look
//
// Each state has a title ("text"), a text look whose alignment is always the normal look's, and
// a background: an image (OSTImageDescription) without the drop shadow, which the button casts
// itself from the normal look. A button without a "states" object has no looks and is not shown.
//
//   "alpha"          a number or numeric string, clamped to 0...1; 1 otherwise
//   "onClick"        the action (OSTAction)
//   "imageSelector"  a picture chooser's menu: "photosText" ("Photos"), "cancelText" ("Cancel")
//   any "buttonType" string makes the button an input of the screen's validation
//
// Immutable, shared; GUI thread to read (fonts).
class OSTButtonDescription : public OSTElementDescription {
public:
    struct StateLook {
        QString title;
        OSTTextLook textLook;
        std::shared_ptr<const OSTImageDescription> background;
    };
    struct States {
        StateLook normal;
        std::optional<StateLook> pressed;
        std::optional<StateLook> disabled;
    };
    struct ImageSelector {
        QString photosText;
        QString cancelText;
    };

    OSTButtonDescription(const QString &key, const QVariantMap &properties);
    ~OSTButtonDescription() override;

    const std::optional<States> &states() const { return m_states; }
    qreal buttonAlpha() const { return m_buttonAlpha; }
    const std::optional<OSTShadow> &buttonShadow() const { return m_buttonShadow; }
    bool isToggle() const { return m_toggle; }
    const std::shared_ptr<const OSTAction> &action() const { return m_action; }
    const std::optional<ImageSelector> &imageSelector() const { return m_imageSelector; }
    // Set only for a button with a "buttonType": plain buttons take no part in validation.
    const std::optional<OSTValidationSettings> &validation() const { return m_validation; }

private:
    std::optional<States> m_states;
    std::optional<OSTShadow> m_buttonShadow;
    const qreal m_buttonAlpha;
    const bool m_toggle;
    std::shared_ptr<const OSTAction> m_action;
    std::optional<ImageSelector> m_imageSelector;
    std::optional<OSTValidationSettings> m_validation;
};

} // namespace ostrel
