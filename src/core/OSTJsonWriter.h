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
// pointers, widgets...) is refused, and so is nesting deeper than maximumDepth: a parser on the
// other side gives up long before, and the writer's own recursion stays bounded. Stateless and
// thread-safe.
class OSTJsonWriter {
public:
    // Containers inside containers, counting the outermost as 1.
    static constexpr int maximumDepth = 64;

    OSTJsonWriter() = delete;

    // Whether `value` holds containers nested deeper than maximumDepth; looks no further down.
    static bool isNestedTooDeep(const QVariant &value);

    // Whether `value`, and everything nested in it, is something JSON can carry.
    static bool isJSONValue(const QVariant &value);
    // The object's JSON text, or nothing when a value in it is refused.
    static std::optional<QByteArray> serialized(const QVariantMap &object);
    // Appends the value's JSON text to `out`; on refusal returns false and leaves `out` as it was.
    static bool appendValue(QByteArray &out, const QVariant &value);
    // Appends `text` as a quoted, escaped JSON string.
    static void appendString(QByteArray &out, QStringView text);

private:
    static bool writeValue(QByteArray &out, const QVariant &value, int depth);
    template <typename Map>
    static bool writeMap(QByteArray &out, const Map &map, int depth);
    template <typename List>
    static bool writeList(QByteArray &out, const List &list, int depth);
    static bool nestsDeeperThan(const QVariant &value, int allowedDepth);
    static void writeDouble(QByteArray &out, double value);
    template <typename Integer>
    static void writeInteger(QByteArray &out, Integer value);
};

} // namespace ostrel
