#include "screen/OSTElementKeys.h"

#include "core/OSTDictionaryHelpers.h"
#include "experience/OSTAction.h"
#include "screen/OSTPropertyValues.h"
#include "screen/OSTScreenVocabulary.h"

#include <algorithm>

namespace ostrel {

qreal OSTElementKeys::alpha(const QVariantMap &properties, NumberSpelling spelling)
{
    const QString &key = OSTScreenVocabulary::alphaKey;
    const std::optional<double> alpha = spelling == NumberSpelling::NumericString
        ? ost_stringNumberForKey(properties, key)
        : ost_finiteDouble(ost_numberForKey(properties, key));
    return std::clamp(alpha.value_or(1.0), 0.0, 1.0);
}

std::optional<QString> OSTElementKeys::buttonType(const QVariantMap &properties)
{
    return ost_stringForKey(properties, OSTScreenVocabulary::buttonTypeKey);
}

std::shared_ptr<const OSTAction> OSTElementKeys::onClick(const QVariantMap &properties)
{
    if (const std::optional<QVariantMap> onClick = ost_dictionaryForKey(properties, OSTScreenVocabulary::onClickKey))
        return std::make_shared<const OSTAction>(*onClick);
    return nullptr;
}

QString OSTElementKeys::text(const QVariantMap &properties)
{
    return ost_stringForKey(properties, OSTScreenVocabulary::textKey).value_or(QString());
}

QVariantMap OSTElementKeys::inputText(const QVariantMap &properties)
{
    return ost_dictionaryForKey(properties, OSTScreenVocabulary::textKey).value_or(QVariantMap());
}

std::optional<QVariantMap> OSTElementKeys::picker(const QVariantMap &properties)
{
    return ost_dictionaryForKey(properties, OSTScreenVocabulary::pickerKey);
}

std::optional<OSTToolbarSettings> OSTElementKeys::toolbar(const QVariantMap &properties)
{
    if (const std::optional<QVariantMap> toolbar = ost_dictionaryForKey(properties, OSTScreenVocabulary::toolbarKey))
        return OSTToolbarSettings::fromProperties(*toolbar);
    return std::nullopt;
}

int OSTElementKeys::inputOrder(const QVariantMap &properties)
{
    return ost_integerForKey(properties, OSTScreenVocabulary::inputOrderKey);
}

OSTTextFieldType OSTElementKeys::textType(const QVariantMap &properties)
{
    return OSTTextFieldTypeFromString(ost_stringForKey(properties, OSTScreenVocabulary::textTypeKey));
}

bool OSTElementKeys::secureTextEntry(const QVariantMap &properties, FlagSpelling spelling)
{
    const QString &key = OSTScreenVocabulary::secureTextEntryKey;
    if (spelling == FlagSpelling::StringOrBoolean)
        return ost_flagForKey(properties, key, false);
    return ost_boolValue(ost_stringForKey(properties, key).value_or(QString()));
}

std::optional<QString> OSTElementKeys::alignment(const QVariantMap &properties)
{
    return ost_stringForKey(properties, OSTScreenVocabulary::alignmentKey);
}

} // namespace ostrel
