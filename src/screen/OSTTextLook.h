#pragma once

#include "screen/OSTShadow.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QColor>
#include <QFont>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// How a text is drawn, read once from an element's properties (a label, a button state, a text
// field's "text" object):
//
//   "font", "size"  the font (see OSTFontResolver); no font keeps the widget's own
//   "textColor"     hexadecimal colour; absent keeps black (hasTextColor tells it was given)
//   "shadow"        text shadow [colour, blur radius, x offset, y offset]
//   "style"         "underlined" underlines the text
//   "lineSpacing"   extra points between lines, a numeric string above 0, at most 1000
//   "alignment"     "left", "center", "right", "justified", "natural"; default centre
//
// A value type; reading a font needs the GUI thread (the font database).
struct OSTTextLook {
    std::optional<QFont> font;
    QColor textColor = Qt::black;
    bool hasTextColor = false;
    std::optional<OSTShadow> shadow;
    bool underlined = false;
    std::optional<qreal> lineSpacing;
    NSTextAlignment alignment = NSTextAlignmentCenter;
    // The alignment word as written, for the views that read it their own way (a text field).
    std::optional<QString> alignmentWord;

    static OSTTextLook fromProperties(const QVariantMap &properties);

    friend bool operator==(const OSTTextLook &, const OSTTextLook &) = default;
};

} // namespace ostrel
