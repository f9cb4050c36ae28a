#include "screen/OSTTextFieldDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTContentInsets.h"
#include "screen/OSTElementKeys.h"
#include "screen/OSTPropertyValues.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int phoneNumberMaxLength = 14;
constexpr int pinMaxLength = 4;

// The alignment word of a field or its text object: the first string of these keys.
std::optional<QString> alignmentWordOf(const QVariantMap &properties)
{
    for (const QString &key : {u"contentAlignment"_s, u"textAlignment"_s})
        if (std::optional<QString> word = ost_stringForKey(properties, key))
            return word;
    return OSTElementKeys::alignment(properties);
}

OSTTextFieldDescription::StateLook stateLook(const QVariantMap &state)
{
    const QVariantMap text = OSTElementKeys::inputText(state);
    const auto insets = ost_contentInsetsOf(text);
    return {OSTBoxLook::fromProperties(state), ost_objectShadowWithProperties(state), OSTTextLook::fromProperties(text),
            alignmentWordOf(text), insets ? insets : ost_contentInsetsOf(state)};
}

// The invalid state laid over the field, the state winning; the normal look without one (most
// fields have none, and reading the same properties twice would only cost time).
OSTTextFieldDescription::StateLook invalidLookOf(const QVariantMap &properties,
                                                 const OSTTextFieldDescription::StateLook &normalLook)
{
    const QVariantMap states = ost_dictionaryForKey(properties, u"states"_s).value_or(QVariantMap());
    const std::optional<QVariantMap> invalid = ost_dictionaryForKey(states, u"invalid"_s);
    return invalid ? stateLook(ost_mergeIntoDictionary(*invalid, properties)) : normalLook;
}

std::optional<UIControlContentHorizontalAlignment> contentHorizontalAlignmentOf(const QVariantMap &properties)
{
    const std::optional<QString> word = ost_stringForKey(properties, u"horizontalAlignment"_s);
    if (!word)
        return std::nullopt;
    return UIControlContentHorizontalAlignmentFromString(word);
}

} // namespace

OSTTextFieldDescription::OSTTextFieldDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::TextField, key, properties),
      m_normalLook(stateLook(properties)),
      m_invalidLook(invalidLookOf(properties, m_normalLook)),
      m_fieldAlpha(OSTElementKeys::alpha(properties, OSTElementKeys::NumberSpelling::NumberOrNumericString)),
      m_textType(OSTElementKeys::textType(properties)),
      m_secureTextEntry(OSTElementKeys::secureTextEntry(properties, OSTElementKeys::FlagSpelling::StringOrBoolean)),
      m_alignmentWord(alignmentWordOf(properties)),
      m_contentHorizontalAlignment(contentHorizontalAlignmentOf(properties)),
      m_verticalAlignment(UIControlContentVerticalAlignmentFromString(ost_stringForKey(properties, u"verticalAlignment"_s))),
      m_adjustsFontSizeToFitWidth(ost_flagForKey(properties, u"adjustsFontSizeToFitWidth"_s, false)),
      m_minimumFontSize(ost_finiteDouble(ost_numberForKey(properties, u"minimumFontSize"_s)).value_or(0)),
      m_validationPattern(ost_stringForKey(properties, u"validationPattern"_s).value_or(QString())),
      m_clearButtonMode(UITextFieldViewModeFromString(ost_stringForKey(properties, u"clearButtonMode"_s))),
      m_clearsOnBeginEditing(ost_flagForKey(properties, u"clearsOnBeginEditing"_s, false)),
      m_enablesReturnKeyAutomatically(ost_flagForKey(properties, u"enablesReturnKeyAutomatically"_s, false)),
      m_autoSubmit(m_textType == OSTTextFieldTypePhoneNumberPin && ost_flagForKey(properties, u"autoSubmit"_s, true)),
      m_keyboardType(UIKeyboardTypeFromString(ost_stringForKey(properties, u"keyboardType"_s))),
      m_autocapitalizationType(
          UITextAutocapitalizationTypeFromString(ost_stringForKey(properties, u"autocapitalizationType"_s))),
      m_autocorrectionType(UITextAutocorrectionTypeFromString(ost_stringForKey(properties, u"autocorrectionType"_s))),
      m_initialText(OSTElementKeys::text(OSTElementKeys::inputText(properties))),
      m_toolbar(OSTElementKeys::toolbar(properties)),
      m_inputOrder(OSTElementKeys::inputOrder(properties)),
      m_validation(OSTValidationSettings::fromProperties(key, properties))
{
    readLimits(properties);
    if (const std::optional<QVariantMap> placeholder = ost_dictionaryForKey(properties, u"placeholder"_s))
        m_placeholder = std::make_shared<const OSTLabelDescription>(key, *placeholder);
}

OSTTextFieldDescription::~OSTTextFieldDescription() = default;

void OSTTextFieldDescription::readLimits(const QVariantMap &properties)
{
    m_maxLength = std::max(ost_integerForKey(properties, u"maxLength"_s), -1);
    m_minLength = ost_integerForKey(properties, u"minLength"_s);
    if (m_maxLength >= 0)
        m_minLength = std::min(m_minLength, m_maxLength);
    switch (m_textType) {
    case OSTTextFieldTypePhoneNumber:
    case OSTTextFieldTypePhoneNumberValidated:
        m_maxLength = phoneNumberMaxLength;
        break;
    case OSTTextFieldTypePhoneNumberPin:
        m_maxLength = pinMaxLength;
        break;
    case OSTTextFieldTypePassword:
    case OSTTextFieldTypePlain:
        break;
    }
}

} // namespace ostrel
