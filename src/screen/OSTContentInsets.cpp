#include "screen/OSTContentInsets.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTScreenVocabulary.h"

#include <algorithm>
#include <limits>

namespace ostrel {

namespace {

// Insets far outside any screen are clamped so that rectangle arithmetic cannot overflow.
constexpr double insetLimit = 100000;

int insetOf(const QVariant &number)
{
    return int(std::clamp(ost_finiteDouble(number).value_or(0), -insetLimit, insetLimit));
}

} // namespace

std::optional<QMargins> ost_contentInsetsOf(const QVariantMap &properties)
{
    const std::optional<QVariantList> list = ost_arrayForKey(properties, OSTScreenVocabulary::contentInsetsKey);
    if (!list || list->size() != 4 || !std::all_of(list->begin(), list->end(), ost_isNumber))
        return std::nullopt;
    return QMargins(insetOf(list->at(1)), insetOf(list->at(0)), insetOf(list->at(3)), insetOf(list->at(2)));
}

} // namespace ostrel
