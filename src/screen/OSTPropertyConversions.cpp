#include <ostrel/OSTPropertyConversions.h>

#include <QHash>

#include <initializer_list>
#include <utility>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// One word-to-value table. Each conversion keeps its table in a function-local static, so the
// table is built once, on first use, under the compiler's thread-safe guard.
template <typename Enumeration>
class LookupTable {
public:
    LookupTable(Enumeration defaultValue,
                std::initializer_list<std::pair<QString, Enumeration>> entries)
        : m_defaultValue(defaultValue), m_values(entries)
    {
    }

    Enumeration valueFor(const std::optional<QString> &string) const
    {
        if (!string)
            return m_defaultValue;
        return m_values.value(*string, m_defaultValue);
    }

private:
    const Enumeration m_defaultValue;
    const QHash<QString, Enumeration> m_values;
};

} // namespace

NSTextAlignment NSTextAlignmentFromString(const std::optional<QString> &string)
{
    static const LookupTable<NSTextAlignment> table(NSTextAlignmentCenter, {
        {u"left"_s, NSTextAlignmentLeft},
        {u"center"_s, NSTextAlignmentCenter},
        {u"right"_s, NSTextAlignmentRight},
        {u"justified"_s, NSTextAlignmentJustified},
        {u"natural"_s, NSTextAlignmentNatural},
    });
    return table.valueFor(string);
}

UIViewContentMode UIViewContentModeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIViewContentMode> table(UIViewContentModeScaleAspectFill, {
        {u"scaleFill"_s, UIViewContentModeScaleToFill},
        {u"aspectFit"_s, UIViewContentModeScaleAspectFit},
        {u"aspectFill"_s, UIViewContentModeScaleAspectFill},
        {u"center"_s, UIViewContentModeCenter},
        {u"top"_s, UIViewContentModeTop},
        {u"bottom"_s, UIViewContentModeBottom},
        {u"left"_s, UIViewContentModeLeft},
        {u"right"_s, UIViewContentModeRight},
        {u"topLeft"_s, UIViewContentModeTopLeft},
        {u"topRight"_s, UIViewContentModeTopRight},
        {u"bottomLeft"_s, UIViewContentModeBottomLeft},
        {u"bottomRight"_s, UIViewContentModeBottomRight},
    });
    return table.valueFor(string);
}

UIControlContentHorizontalAlignment
UIControlContentHorizontalAlignmentFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIControlContentHorizontalAlignment> table(
        UIControlContentHorizontalAlignmentCenter, {
            {u"left"_s, UIControlContentHorizontalAlignmentLeft},
            {u"right"_s, UIControlContentHorizontalAlignmentRight},
            {u"fill"_s, UIControlContentHorizontalAlignmentFill},
        });
    return table.valueFor(string);
}

UIControlContentVerticalAlignment
UIControlContentVerticalAlignmentFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIControlContentVerticalAlignment> table(
        UIControlContentVerticalAlignmentCenter, {
            {u"top"_s, UIControlContentVerticalAlignmentTop},
            {u"bottom"_s, UIControlContentVerticalAlignmentBottom},
            {u"fill"_s, UIControlContentVerticalAlignmentFill},
        });
    return table.valueFor(string);
}

UIDatePickerMode UIDatePickerModeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIDatePickerMode> table(UIDatePickerModeDate, {
        {u"time"_s, UIDatePickerModeTime},
        {u"dateAndTime"_s, UIDatePickerModeDateAndTime},
        {u"countDownTimer"_s, UIDatePickerModeCountDownTimer},
    });
    return table.valueFor(string);
}

UIKeyboardAppearance UIKeyboardAppearanceFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIKeyboardAppearance> table(UIKeyboardAppearanceDefault, {
        {u"dark"_s, UIKeyboardAppearanceDark},
        {u"light"_s, UIKeyboardAppearanceLight},
    });
    return table.valueFor(string);
}

UIKeyboardType UIKeyboardTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIKeyboardType> table(UIKeyboardTypeDefault, {
        {u"ASCIICapable"_s, UIKeyboardTypeASCIICapable},
        {u"numbersAndPunctuation"_s, UIKeyboardTypeNumbersAndPunctuation},
        {u"URL"_s, UIKeyboardTypeURL},
        {u"numberPad"_s, UIKeyboardTypeNumberPad},
        {u"phonePad"_s, UIKeyboardTypePhonePad},
        {u"namePhonePad"_s, UIKeyboardTypeNamePhonePad},
        {u"emailAddress"_s, UIKeyboardTypeEmailAddress},
        {u"decimalPad"_s, UIKeyboardTypeDecimalPad},
        {u"twitter"_s, UIKeyboardTypeTwitter},
        {u"webSearch"_s, UIKeyboardTypeWebSearch},
    });
    return table.valueFor(string);
}

UIReturnKeyType UIReturnKeyTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UIReturnKeyType> table(UIReturnKeyDefault, {
        {u"go"_s, UIReturnKeyGo},
        {u"google"_s, UIReturnKeyGoogle},
        {u"join"_s, UIReturnKeyJoin},
        {u"next"_s, UIReturnKeyNext},
        {u"route"_s, UIReturnKeyRoute},
        {u"search"_s, UIReturnKeySearch},
        {u"send"_s, UIReturnKeySend},
        {u"yahoo"_s, UIReturnKeyYahoo},
        {u"done"_s, UIReturnKeyDone},
        {u"emergencyCall"_s, UIReturnKeyEmergencyCall},
    });
    return table.valueFor(string);
}

UITextAutocapitalizationType
UITextAutocapitalizationTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UITextAutocapitalizationType> table(UITextAutocapitalizationTypeNone, {
        {u"words"_s, UITextAutocapitalizationTypeWords},
        {u"sentences"_s, UITextAutocapitalizationTypeSentences},
        {u"allCharacters"_s, UITextAutocapitalizationTypeAllCharacters},
    });
    return table.valueFor(string);
}

UITextAutocorrectionType UITextAutocorrectionTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UITextAutocorrectionType> table(UITextAutocorrectionTypeDefault, {
        {u"no"_s, UITextAutocorrectionTypeNo},
        {u"yes"_s, UITextAutocorrectionTypeYes},
    });
    return table.valueFor(string);
}

UITextSpellCheckingType UITextSpellCheckingTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UITextSpellCheckingType> table(UITextSpellCheckingTypeDefault, {
        {u"no"_s, UITextSpellCheckingTypeNo},
        {u"yes"_s, UITextSpellCheckingTypeYes},
    });
    return table.valueFor(string);
}

UITextFieldViewMode UITextFieldViewModeFromString(const std::optional<QString> &string)
{
    static const LookupTable<UITextFieldViewMode> table(UITextFieldViewModeNever, {
        {u"whileEditing"_s, UITextFieldViewModeWhileEditing},
        {u"unlessEditing"_s, UITextFieldViewModeUnlessEditing},
        {u"always"_s, UITextFieldViewModeAlways},
    });
    return table.valueFor(string);
}

OSTPickerType OSTPickerTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<OSTPickerType> table(OSTPickerTypeCustomData, {
        {u"countryCode"_s, OSTPickerTypeCountryCode},
        {u"date"_s, OSTPickerTypeDate},
    });
    return table.valueFor(string);
}

OSTTextFieldType OSTTextFieldTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<OSTTextFieldType> table(OSTTextFieldTypePlain, {
        {u"password"_s, OSTTextFieldTypePassword},
        {u"phoneNumber"_s, OSTTextFieldTypePhoneNumber},
        {u"phoneNumberValidated"_s, OSTTextFieldTypePhoneNumberValidated},
        {u"phoneNumberPin"_s, OSTTextFieldTypePhoneNumberPin},
    });
    return table.valueFor(string);
}

OSTActionType OSTActionTypeFromString(const std::optional<QString> &string)
{
    static const LookupTable<OSTActionType> table(OSTActionTypeNone, {
        {u"next"_s, OSTActionTypeNext},
        {u"previous"_s, OSTActionTypePrevious},
        {u"close"_s, OSTActionTypeClose},
        {u"startFlow"_s, OSTActionTypeStartFlow},
        {u"loginFacebook"_s, OSTActionTypeLoginFacebook},
        {u"openUrl"_s, OSTActionTypeOpenURL},
    });
    return table.valueFor(string);
}

} // namespace ostrel
