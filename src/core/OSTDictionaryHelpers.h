#pragma once

// Type-checked reads of decoded JSON and property-list dictionaries. A value of the wrong type
// reads as absent, so callers fall back to their documented default instead of misreading it.

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The value under `key` when it holds exactly a T, else nothing.
template <typename T>
std::optional<T> ost_objectForKey(const QVariantMap &dictionary, const QString &key)
{
    const auto found = dictionary.constFind(key);
    if (found == dictionary.constEnd() || found->metaType() != QMetaType::fromType<T>())
        return std::nullopt;
    return found->value<T>();
}

std::optional<QVariantMap> ost_dictionaryForKey(const QVariantMap &dictionary, const QString &key);
std::optional<QVariantList> ost_arrayForKey(const QVariantMap &dictionary, const QString &key);
// Strings only: a number is not turned into a string.
std::optional<QString> ost_stringForKey(const QVariantMap &dictionary, const QString &key);
// A number (booleans count as 1 and 0), or a string that the "en_US" decimal reading accepts
// ("1,234.5" is 1234.5; "1.234,5" is absent).
std::optional<double> ost_numberForKey(const QVariantMap &dictionary, const QString &key);

// The "en_US" decimal reading of ost_numberForKey on its own.
std::optional<double> ost_numberFromString(const QString &text);
// Whether the value is a number (integer, floating point or boolean).
bool ost_isNumber(const QVariant &value);

// `receiver` laid over `other`: on a conflict the receiver wins, dictionaries under the same key
// are merged to any depth, arrays and other values are replaced whole.
QVariantMap ost_mergeIntoDictionary(const QVariantMap &receiver, const QVariantMap &other);

// Sets `value` under `key` unless the value is null (invalid); a null value leaves any earlier
// value in place.
void ost_safeSetObject(QVariantMap &dictionary, const QVariant &value, const QString &key);

// The boolean reading of a text: true when it begins with 'Y', 'y', 'T', 't' or a digit 1 to 9,
// after optional leading white space, sign and zeros.
bool ost_boolValue(const QString &text);

// The entries of `dictionary` under `keys` whose value is present and is not the empty string,
// values as they stand (the tracking parameters of screens and flows).
QVariantMap ost_presentValuesForKeys(const QVariantMap &dictionary, const QStringList &keys);

} // namespace ostrel
