#pragma once

#include <QColor>
#include <QList>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The box of an element as screen JSON describes it, read once:
//
//   "backgroundColor"    hexadecimal colour; used only without "backgroundGradient"; absent is clear
//   "backgroundGradient" {"baseColor": colour under the gradient, "colors": [stops],
//                         "radius": radial end radius (number or numeric string),
//                         "style": "horizontal" for left to right, else top to bottom}
//   "borderSize", "borderColor"  a border, only when both are given and the size (a numeric
//                        string) is above 0
//   "cornerRadius"       a numeric string of points, or "circle" for half the height (a square
//                        becomes a circle, a wide box a capsule)
//
// A value type, usable on any thread.
struct OSTBoxLook {
    enum class CornerStyle { Radius, Circle };
    enum class GradientDirection { Horizontal, Vertical };

    struct Gradient {
        QList<QColor> colors;
        std::optional<qreal> radius; // radial when set
        GradientDirection direction = GradientDirection::Vertical;

        friend bool operator==(const Gradient &, const Gradient &) = default;
    };

    QColor fillColor = QColor(Qt::transparent);
    std::optional<Gradient> gradient;
    qreal borderWidth = 0;
    QColor borderColor;
    CornerStyle cornerStyle = CornerStyle::Radius;
    qreal cornerRadius = 0;

    static OSTBoxLook fromProperties(const QVariantMap &properties);

    friend bool operator==(const OSTBoxLook &, const OSTBoxLook &) = default;
};

} // namespace ostrel
