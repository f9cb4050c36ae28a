#pragma once

#include <QByteArray>
#include <QVariant>

#include <optional>

namespace ostrel {

// Serialises property-list values (strings, booleans, numbers, data, dates and arrays and
// dictionaries of these) to bytes and back. The bytes carry a magic tag and a format version so
// that a later SDK can still read what an earlier one stored.
class OSTPropertyListArchive {
public:
    OSTPropertyListArchive() = delete;

    // Whether `value` is a property-list value, looking into arrays and dictionaries.
    static bool isPropertyListValue(const QVariant &value);
    // The archive of a property-list value; an empty array for any other value.
    static QByteArray archive(const QVariant &value);
    // The value of an archive, or nothing when the bytes are not an archive of this format.
    static std::optional<QVariant> unarchive(const QByteArray &bytes);
};

} // namespace ostrel
