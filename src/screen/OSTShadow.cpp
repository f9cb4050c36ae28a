#include "screen/OSTShadow.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "screen/OSTColorHelpers.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr qsizetype shadowEntryCount = 4;
const QString objectShadowKey = u"objectShadow"_s;

qreal shadowNumber(const QVariant &entry)
{
    if (const auto number = ost_finiteDouble(entry))
        return *number;
    if (entry.typeId() == QMetaType::QString) {
        if (const auto number = ost_finiteDouble(ost_numberFromString(entry.toString())))
            return *number;
    }
    OSTLogging::logWarning(u"Shadow value %1 is not a number; using 0."_s, entry);
    return 0;
}

} // namespace

std::optional<OSTShadow> ost_shadowFromArray(const QVariantList &entries)
{
    if (entries.size() < shadowEntryCount || entries.at(0).typeId() != QMetaType::QString)
        return std::nullopt;
    return OSTShadow{ost_colorWithHexString(entries.at(0).toString()), shadowNumber(entries.at(1)),
                     QPointF(shadowNumber(entries.at(2)), shadowNumber(entries.at(3)))};
}

std::optional<OSTShadow> ost_shadowWithProperties(const QVariantMap &properties)
{
    const auto entries = ost_arrayForKey(properties, u"shadow"_s);
    if (!entries)
        return std::nullopt;
    auto shadow = ost_shadowFromArray(*entries);
    if (!shadow || shadow->blurRadius == 0 || ost_isClear(shadow->color))
        return std::nullopt;
    return shadow;
}

std::optional<OSTShadow> ost_objectShadowWithProperties(const QVariantMap &properties)
{
    const auto entries = ost_arrayForKey(properties, objectShadowKey);
    if (!entries)
        return std::nullopt;
    auto shadow = ost_shadowFromArray(*entries);
    if (!shadow || shadow->blurRadius <= 0)
        return std::nullopt;
    return shadow;
}

QVariantMap ost_propertiesWithoutObjectShadow(QVariantMap properties)
{
    properties.remove(objectShadowKey);
    return properties;
}

} // namespace ostrel
