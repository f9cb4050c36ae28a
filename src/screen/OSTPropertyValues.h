#pragma once

// Numbers that screen JSON writes as strings ("alpha", "borderSize", "cornerRadius" and the
// like). Visual values must be JSON strings: a JSON number in their place is ignored, so the
// element's default applies.

#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The number the string under `key` holds (read the "en_US" way). Nothing when the key is
// missing or holds another type; nothing, with a warning naming the key, when the string is not
// a finite number.
std::optional<double> ost_stringNumberForKey(const QVariantMap &properties, const QString &key);
// The same of a string already read under `key`.
std::optional<double> ost_stringNumber(const QString &key, const std::optional<QString> &text);

// A flag written as a JSON boolean or as a string read as a boolean ("YES", "true", "1"...);
// `fallback` for anything else.
bool ost_flagForKey(const QVariantMap &properties, const QString &key, bool fallback);

// A number or numeric string as an integer, truncated and held to the int range; 0 otherwise.
int ost_integerForKey(const QVariantMap &properties, const QString &key);

} // namespace ostrel
