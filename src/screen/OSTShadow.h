#pragma once

// Shadows of screen JSON. Both the text shadow ("shadow") and an element's drop shadow
// ("objectShadow") are arrays of four entries: the colour as a hexadecimal string, then the blur
// radius, the horizontal offset and the vertical offset in points (numbers or numeric strings).

#include <QColor>
#include <QPointF>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace ostrel {

struct OSTShadow {
    QColor color;
    qreal blurRadius = 0;
    QPointF offset;

    friend bool operator==(const OSTShadow &, const OSTShadow &) = default;
};

// The shadow an array describes, or none when it has fewer than four entries or its first entry
// is not a string. A later entry that is neither a number nor a numeric string reads as 0 (and
// is logged).
std::optional<OSTShadow> ost_shadowFromArray(const QVariantList &entries);

// The text shadow under "shadow": none when the array is missing or incomplete, its blur radius
// is 0 or its colour is clear.
std::optional<OSTShadow> ost_shadowWithProperties(const QVariantMap &properties);

// The drop shadow under "objectShadow": none when the array is missing or incomplete or its blur
// radius is not above 0. A clear colour still counts: it just cannot be seen.
std::optional<OSTShadow> ost_objectShadowWithProperties(const QVariantMap &properties);

// `properties` without "objectShadow": for the parts of an element (a button's state backgrounds,
// a picker's box) whose element casts the shadow itself, outside its box, where a part inside the
// box would have it clipped.
QVariantMap ost_propertiesWithoutObjectShadow(QVariantMap properties);

} // namespace ostrel
