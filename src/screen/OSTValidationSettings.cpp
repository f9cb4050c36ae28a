#include "screen/OSTValidationSettings.h"

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

bool booleanProperty(const QVariantMap &properties, const QString &key)
{
    return ost_boolValue(ost_stringForKey(properties, key).value_or(QString()));
}

} // namespace

OSTValidationSettings OSTValidationSettings::fromProperties(const QString &key, const QVariantMap &properties)
{
    return {booleanProperty(properties, u"isOptional"_s), booleanProperty(properties, u"isUnique"_s),
            ost_stringForKey(properties, u"userPropertyName"_s).value_or(key),
            ost_stringForKey(properties, u"errorMessage"_s).value_or(u"Invalid input."_s)};
}

} // namespace ostrel
