#include "screen/OSTElementFrame.h"

#include "core/OSTDictionaryHelpers.h"

#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::optional<qint64> zLayerFromNumber(double number)
{
    const double truncated = std::trunc(number);
    if (std::isnan(number) || truncated < 0.0 || truncated >= 9223372036854775808.0)
        return std::nullopt;
    return static_cast<qint64>(truncated);
}

void readFormula(QString &formula, const QVariantMap &properties, const QString &key)
{
    if (const auto text = ost_stringForKey(properties, key))
        formula = *text;
}

} // namespace

OSTElementFrame OSTElementFrame::fromProperties(const QVariantMap &properties)
{
    OSTElementFrame frame;
    readFormula(frame.x, properties, u"x"_s);
    readFormula(frame.y, properties, u"y"_s);
    readFormula(frame.width, properties, u"width"_s);
    readFormula(frame.height, properties, u"height"_s);
    if (const auto anchored = ost_stringForKey(properties, u"anchored"_s))
        frame.anchored = ost_boolValue(*anchored);
    if (const auto zLayer = ost_finiteDouble(ost_numberForKey(properties, u"zLayer"_s)))
        frame.zLayer = zLayerFromNumber(*zLayer);
    return frame;
}

} // namespace ostrel
