#include "screen/OSTBoxLook.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTColorHelpers.h"
#include "screen/OSTPropertyValues.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QColor colorForKey(const QVariantMap &properties, const QString &key)
{
    return ost_colorWithHexString(ost_stringForKey(properties, key).value_or(QString()));
}

QColor colorFromEntry(const QVariant &entry)
{
    if (entry.typeId() != QMetaType::QString)
        return QColor(Qt::transparent);
    return ost_colorWithHexString(entry.toString());
}

void readBorder(OSTBoxLook &look, const QVariantMap &properties)
{
    const qreal size = ost_stringNumberForKey(properties, u"borderSize"_s).value_or(0);
    const auto color = ost_stringForKey(properties, u"borderColor"_s);
    if (size > 0 && color) {
        look.borderWidth = size;
        look.borderColor = ost_colorWithHexString(*color);
    }
}

void readCorners(OSTBoxLook &look, const QVariantMap &properties)
{
    const QString key = u"cornerRadius"_s;
    const std::optional<QString> radius = ost_stringForKey(properties, key);
    if (radius == u"circle"_s) {
        look.cornerStyle = OSTBoxLook::CornerStyle::Circle;
        return;
    }
    look.cornerRadius = ost_stringNumber(key, radius).value_or(0);
}

void readFill(OSTBoxLook &look, const QVariantMap &properties)
{
    const auto gradient = ost_dictionaryForKey(properties, u"backgroundGradient"_s);
    if (!gradient) {
        look.fillColor = colorForKey(properties, u"backgroundColor"_s);
        return;
    }
    look.fillColor = colorForKey(*gradient, u"baseColor"_s);
    OSTBoxLook::Gradient fill;
    for (const QVariant &entry : ost_arrayForKey(*gradient, u"colors"_s).value_or(QVariantList()))
        fill.colors.append(colorFromEntry(entry));
    fill.radius = ost_finiteDouble(ost_numberForKey(*gradient, u"radius"_s));
    if (!fill.radius && ost_stringForKey(*gradient, u"style"_s) == u"horizontal"_s)
        fill.direction = OSTBoxLook::GradientDirection::Horizontal;
    look.gradient = fill;
}

} // namespace

OSTBoxLook OSTBoxLook::fromProperties(const QVariantMap &properties)
{
    OSTBoxLook look;
    readBorder(look, properties);
    readCorners(look, properties);
    readFill(look, properties);
    return look;
}

} // namespace ostrel
