#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// Where an element lies, as the layout engine takes it: the formulas of "x", "y", "width" and
// "height" (strings only; another type reads as absent and the default applies: "0", "0",
// "100%", "100%"), whether it moves with the scrolled content ("anchored": a string read as a
// boolean, true otherwise) and its stacking layer ("zLayer": a number or numeric string,
// truncated; absent, negative, NaN or beyond 64 bits leave the category's default). A value type.
struct OSTElementFrame {
    QString x = QStringLiteral("0");
    QString y = QStringLiteral("0");
    QString width = QStringLiteral("100%");
    QString height = QStringLiteral("100%");
    bool anchored = true;
    std::optional<qint64> zLayer;

    static OSTElementFrame fromProperties(const QVariantMap &properties);

    friend bool operator==(const OSTElementFrame &, const OSTElementFrame &) = default;
};

} // namespace ostrel
