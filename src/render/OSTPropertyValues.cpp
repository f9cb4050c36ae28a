#include "render/OSTPropertyValues.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

std::optional<double> ost_stringNumberForKey(const QVariantMap &properties, const QString &key)
{
    const auto text = ost_stringForKey(properties, key);
    if (!text)
        return std::nullopt;
    const auto number = ost_finiteDouble(ost_numberFromString(*text));
    if (!number) {
        OSTLogging::logWarning(u"Ignoring \"%1\": \"%2\" is not a number."_s, key, *text);
        return std::nullopt;
    }
    return number;
}

} // namespace ostrel
