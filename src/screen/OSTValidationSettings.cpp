#include "screen/OSTValidationSettings.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTElementKeys.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

bool booleanProperty(const QVariantMap &properties, const QString &key)
{
    return ost_boolValue(ost_stringForKey(properties, key).value_or(QString()));
}

OSTValidationSettings::ValueVisibility valueVisibilityOf(const QVariantMap &properties)
{
    const OSTTextFieldType textType = OSTElementKeys::textType(properties);
    if (textType == OSTTextFieldTypePhoneNumberPin)
        return OSTValidationSettings::ValueVisibility::Transient;
    if (textType == OSTTextFieldTypePassword
        || OSTElementKeys::secureTextEntry(properties, OSTElementKeys::FlagSpelling::String))
        return OSTValidationSettings::ValueVisibility::Secret;
    if (textType == OSTTextFieldTypePhoneNumberValidated)
        return OSTValidationSettings::ValueVisibility::PhoneNumberToVerify;
    return OSTValidationSettings::ValueVisibility::Plain;
}

} // namespace

OSTValidationSettings OSTValidationSettings::fromProperties(const QString &key, const QVariantMap &properties)
{
    return {booleanProperty(properties, u"isOptional"_s), booleanProperty(properties, u"isUnique"_s),
            ost_stringForKey(properties, u"userPropertyName"_s).value_or(key),
            ost_stringForKey(properties, u"errorMessage"_s).value_or(u"Invalid input."_s), valueVisibilityOf(properties)};
}

} // namespace ostrel
