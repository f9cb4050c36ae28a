#include "screen/OSTPropertyValues.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

std::optional<double> ost_stringNumberForKey(const QVariantMap &properties, const QString &key)
{
    return ost_stringNumber(key, ost_stringForKey(properties, key));
}

std::optional<double> ost_stringNumber(const QString &key, const std::optional<QString> &text)
{
    if (!text)
        return std::nullopt;
    const auto number = ost_finiteDouble(ost_numberFromString(*text));
    if (!number) {
        OSTLogging::logWarning(u"Ignoring \"%1\": \"%2\" is not a number."_s, key, *text);
        return std::nullopt;
    }
    return number;
}

bool ost_flagForKey(const QVariantMap &properties, const QString &key, bool fallback)
{
    const QVariant value = properties.value(key);
    if (value.metaType() == QMetaType::fromType<bool>())
        return value.toBool();
    if (const std::optional<QString> text = ost_stringForKey(properties, key))
        return ost_boolValue(*text);
    return fallback;
}

int ost_integerForKey(const QVariantMap &properties, const QString &key)
{
    const double number = ost_finiteDouble(ost_numberForKey(properties, key)).value_or(0);
    return int(std::clamp(number, double(std::numeric_limits<int>::min()), double(std::numeric_limits<int>::max())));
}

} // namespace ostrel
