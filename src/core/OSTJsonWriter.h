#pragma once

#include <QByteArray>
#include <QStringView>
#include <QVariant>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// Compact JSON text straight from QVariant values into one UTF-8 buffer, without building a
// QJsonDocument first: strings go from UTF-16 to escaped UTF-8 in one pass. Carries what JSON
// can: maps (QVariantMap, QVariantHash), lists (QVariantList, QStringList), strings, booleans,
// integers, finite doubles (non-finite ones become null) and null. Anything else (dates, data,
// pointers, widgets...) is refused. Stateless and thread-safe.
class OSTJsonWriter {
public:
    OSTJsonWriter() = delete;

    // Whether `value`, and everything nested in it, is something JSON can carry.
    static bool isJSONValue(const QVariant &value);
    // The object's JSON text, or nothing when a value in it is refused.
    static std::optional<QByteArray> serialized(const QVariantMap &object);
    // Appends the value's JSON text to `out`; on refusal returns false and leaves `out` as it was.
    static bool appendValue(QByteArray &out, const QVariant &value);
    // Appends `text` as a quoted, escaped JSON string.
    static void appendString(QByteArray &out, QStringView text);

private:
    static bool writeValue(QByteArray &out, const QVariant &value);
    template <typename Map>
    static bool writeMap(QByteArray &out, const Map &map);
    template <typename List>
    static bool writeList(QByteArray &out, const List &list);
    static void writeDouble(QByteArray &out, double value);
    template <typename Integer>
    static void writeInteger(QByteArray &out, Integer value);
};

} // namespace ostrel
