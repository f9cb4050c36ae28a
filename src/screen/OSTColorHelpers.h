#pragma once

// Colours of screen JSON: hexadecimal strings with an optional "#" and the alpha last
// ("#RGB", "#RGBA", "#RRGGBB", "#RRGGBBAA").

#include <QColor>
#include <QString>
#include <QVariantMap>

namespace ostrel {

// The colour a hexadecimal string names. "#" characters are ignored wherever they stand and
// letters may be of either case. 3 or 4 digits are one digit per component (doubled, so "F" is
// 0xFF); 6 or 8 digits are two per component; without an alpha digit the colour is opaque.
// Any other length, or a component that does not start with a hexadecimal digit, gives the
// clear colour (transparent black).
QColor ost_colorWithHexString(const QString &hexString);

// One component of a hexadecimal colour: the `length` (1 or 2) characters of `string` at
// `start`, a single digit doubled first, read as a hexadecimal number from their start (reading
// stops at the first character that is not a digit, so "5G" is 0x5) and divided by 255. Gives -1
// when the characters do not start with a hexadecimal digit or lie outside the string.
double ost_colorComponentFrom(const QString &string, qsizetype start, qsizetype length);

// The colour of the string under `key`; an invalid colour when the key holds no string.
QColor ost_colorForKey(const QVariantMap &properties, const QString &key);

// Whether the colour is fully transparent. An invalid colour has no alpha to read and is not
// clear.
bool ost_isClear(const QColor &color);

} // namespace ostrel
