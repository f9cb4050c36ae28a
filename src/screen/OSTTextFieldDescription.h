#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTTextLook.h"
#include "screen/OSTToolbarSettings.h"
#include "screen/OSTValidationSettings.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QMargins>

#include <memory>

namespace ostrel {

// A text field ("inputs" without a "picker" object).
//
// Its look has two states: normal (the field's own properties) and invalid ("states"."invalid"
// laid over them, the state winning), each with its box, drop shadow and, from its "text" object,
// text look, alignment word ("contentAlignment", "textAlignment", "alignment", the first string)
// and "contentInsets" (the text object's, else the state's: four numbers, see
// ost_contentInsetsOf).
//
// Behaviour, from the field's own properties:
//
//   "alpha"  a number or numeric string, clamped to 0...1
//   "secureTextEntry", "adjustsFontSizeToFitWidth", "clearsOnBeginEditing",
//   "enablesReturnKeyAutomatically", "autoSubmit" (default true)  JSON booleans or strings
//   "minimumFontSize"  a number or numeric string; 0 otherwise
//   "maxLength", "minLength"  numbers or numeric strings as integers; 0 otherwise. A maximum of
//            0 or, below that, -1 is none; the minimum is held to the written maximum unless that
//            is -1 (so without a maximum, to 0), and the phone types set their own maximum (14;
//            a PIN 4)
//   "textType", "keyboardType", "autocapitalizationType", "autocorrectionType",
//   "clearButtonMode", "verticalAlignment", "horizontalAlignment"  words (OSTPropertyConversions)
//   "validationPattern"  a regular expression the text must match
//   "placeholder"  a label shown while the field is empty; "text"."text" the initial text
//   "toolbar"  the keyboard's bar; "inputOrder" the position in the Return chain
//
// Immutable; GUI thread to read (fonts).
class OSTTextFieldDescription : public OSTElementDescription {
public:
    struct StateLook {
        OSTBoxLook box;
        std::optional<OSTShadow> shadow;
        OSTTextLook textLook;
        std::optional<QString> alignmentWord;
        std::optional<QMargins> contentInsets;
    };
    using ValueVisibility = OSTValidationSettings::ValueVisibility;

    OSTTextFieldDescription(const QString &key, const QVariantMap &properties);
    ~OSTTextFieldDescription() override;

    const StateLook &normalLook() const { return m_normalLook; }
    const StateLook &invalidLook() const { return m_invalidLook; }
    qreal fieldAlpha() const { return m_fieldAlpha; }
    OSTTextFieldType textType() const { return m_textType; }
    bool isSecureTextEntry() const { return m_secureTextEntry; }
    // The alignment word of the field itself, and "horizontalAlignment" when it is a string.
    const std::optional<QString> &alignmentWord() const { return m_alignmentWord; }
    const std::optional<UIControlContentHorizontalAlignment> &contentHorizontalAlignment() const
    {
        return m_contentHorizontalAlignment;
    }
    UIControlContentVerticalAlignment verticalAlignment() const { return m_verticalAlignment; }
    bool adjustsFontSizeToFitWidth() const { return m_adjustsFontSizeToFitWidth; }
    qreal minimumFontSize() const { return m_minimumFontSize; }
    int maxLength() const { return m_maxLength; }
    int minLength() const { return m_minLength; }
    const QString &validationPattern() const { return m_validationPattern; }
    UITextFieldViewMode clearButtonMode() const { return m_clearButtonMode; }
    bool clearsOnBeginEditing() const { return m_clearsOnBeginEditing; }
    bool enablesReturnKeyAutomatically() const { return m_enablesReturnKeyAutomatically; }
    // Whether a complete PIN is sent on its own ("autoSubmit", default true); false for other types.
    bool autoSubmits() const { return m_autoSubmit; }
    UIKeyboardType keyboardType() const { return m_keyboardType; }
    UITextAutocapitalizationType autocapitalizationType() const { return m_autocapitalizationType; }
    UITextAutocorrectionType autocorrectionType() const { return m_autocorrectionType; }
    const std::shared_ptr<const OSTLabelDescription> &placeholder() const { return m_placeholder; }
    const QString &initialText() const { return m_initialText; }
    const std::optional<OSTToolbarSettings> &toolbar() const { return m_toolbar; }
    int inputOrder() const { return m_inputOrder; }
    const OSTValidationSettings &validation() const { return m_validation; }
    // How the screen's validation keeps the value (OSTValidationSettings).
    ValueVisibility valueVisibility() const { return m_validation.valueVisibility; }

private:
    void readLimits(const QVariantMap &properties);

    const StateLook m_normalLook;
    const StateLook m_invalidLook;
    const qreal m_fieldAlpha;
    const OSTTextFieldType m_textType;
    const bool m_secureTextEntry;
    const std::optional<QString> m_alignmentWord;
    const std::optional<UIControlContentHorizontalAlignment> m_contentHorizontalAlignment;
    const UIControlContentVerticalAlignment m_verticalAlignment;
    const bool m_adjustsFontSizeToFitWidth;
    const qreal m_minimumFontSize;
    int m_maxLength = -1;
    int m_minLength = 0;
    const QString m_validationPattern;
    const UITextFieldViewMode m_clearButtonMode;
    const bool m_clearsOnBeginEditing;
    const bool m_enablesReturnKeyAutomatically;
    const bool m_autoSubmit;
    const UIKeyboardType m_keyboardType;
    const UITextAutocapitalizationType m_autocapitalizationType;
    const UITextAutocorrectionType m_autocorrectionType;
    std::shared_ptr<const OSTLabelDescription> m_placeholder;
    const QString m_initialText;
    const std::optional<OSTToolbarSettings> m_toolbar;
    const int m_inputOrder;
    const OSTValidationSettings m_validation;
};

} // namespace ostrel
