#include "core/OSTJsonWriter.h"

#include <QStringList>
#include <QVariantHash>
#include <QVariantList>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace ostrel {

namespace {

constexpr char hexDigits[] = "0123456789abcdef";

// Room for the longest UTF-8 sequence, or a six-character escape, per UTF-16 unit.
constexpr qsizetype worstBytesPerUnit = 6;

char *writeEscapedControl(char *cursor, char16_t unit)
{
    switch (unit) {
    case u'\b': *cursor++ = '\\'; *cursor++ = 'b'; return cursor;
    case u'\f': *cursor++ = '\\'; *cursor++ = 'f'; return cursor;
    case u'\n': *cursor++ = '\\'; *cursor++ = 'n'; return cursor;
    case u'\r': *cursor++ = '\\'; *cursor++ = 'r'; return cursor;
    case u'\t': *cursor++ = '\\'; *cursor++ = 't'; return cursor;
    default:
        *cursor++ = '\\';
        *cursor++ = 'u';
        *cursor++ = '0';
        *cursor++ = '0';
        *cursor++ = hexDigits[(unit >> 4) & 0xf];
        *cursor++ = hexDigits[unit & 0xf];
        return cursor;
    }
}

char *writeCodePoint(char *cursor, char32_t codePoint)
{
    if (codePoint < 0x800) {
        *cursor++ = static_cast<char>(0xc0 | (codePoint >> 6));
    } else if (codePoint < 0x10000) {
        *cursor++ = static_cast<char>(0xe0 | (codePoint >> 12));
        *cursor++ = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3f));
    } else {
        *cursor++ = static_cast<char>(0xf0 | (codePoint >> 18));
        *cursor++ = static_cast<char>(0x80 | ((codePoint >> 12) & 0x3f));
        *cursor++ = static_cast<char>(0x80 | ((codePoint >> 6) & 0x3f));
    }
    *cursor++ = static_cast<char>(0x80 | (codePoint & 0x3f));
    return cursor;
}

} // namespace

bool OSTJsonWriter::isJSONValue(const QVariant &value)
{
    QByteArray scratch;
    return writeValue(scratch, value, 0);
}

bool OSTJsonWriter::isNestedTooDeep(const QVariant &value)
{
    return nestsDeeperThan(value, maximumDepth);
}

bool OSTJsonWriter::nestsDeeperThan(const QVariant &value, int allowedDepth)
{
    const auto anyNestsDeeper = [allowedDepth](const auto &container) {
        return allowedDepth == 0 || std::any_of(container.begin(), container.end(), [allowedDepth](const auto &element) {
                   return nestsDeeperThan(QVariant(element), allowedDepth - 1);
               });
    };
    switch (value.typeId()) {
    case QMetaType::QVariantMap:
        return anyNestsDeeper(*static_cast<const QVariantMap *>(value.constData()));
    case QMetaType::QVariantHash:
        return anyNestsDeeper(*static_cast<const QVariantHash *>(value.constData()));
    case QMetaType::QVariantList:
        return anyNestsDeeper(*static_cast<const QVariantList *>(value.constData()));
    case QMetaType::QStringList:
        return allowedDepth == 0;
    default:
        return false;
    }
}

std::optional<QByteArray> OSTJsonWriter::serialized(const QVariantMap &object)
{
    QByteArray out;
    out.reserve(256);
    if (!writeMap(out, object, 0))
        return std::nullopt;
    return out;
}

bool OSTJsonWriter::appendValue(QByteArray &out, const QVariant &value)
{
    const qsizetype start = out.size();
    if (writeValue(out, value, 0))
        return true;
    out.truncate(start);
    return false;
}

void OSTJsonWriter::appendString(QByteArray &out, QStringView text)
{
    const qsizetype start = out.size();
    out.resize(start + 2 + text.size() * worstBytesPerUnit);
    char *cursor = out.data() + start;
    *cursor++ = '"';
    const char16_t *unit = text.utf16();
    const char16_t *const end = unit + text.size();
    while (unit < end) {
        const char16_t current = *unit++;
        if (current < 0x80) {
            if (current < 0x20)
                cursor = writeEscapedControl(cursor, current);
            else if (current == u'"' || current == u'\\') {
                *cursor++ = '\\';
                *cursor++ = static_cast<char>(current);
            } else
                *cursor++ = static_cast<char>(current);
        } else if (QChar::isHighSurrogate(current) && unit < end && QChar::isLowSurrogate(*unit)) {
            cursor = writeCodePoint(cursor, QChar::surrogateToUcs4(current, *unit++));
        } else if (QChar::isSurrogate(current)) {
            // A lone surrogate is not text; the replacement character keeps the output UTF-8.
            cursor = writeCodePoint(cursor, 0xfffd);
        } else {
            cursor = writeCodePoint(cursor, current);
        }
    }
    *cursor++ = '"';
    out.truncate(cursor - out.constData());
}

bool OSTJsonWriter::writeValue(QByteArray &out, const QVariant &value, int depth)
{
    switch (value.typeId()) {
    case QMetaType::UnknownType:
    case QMetaType::Nullptr:
        out.append("null");
        return true;
    case QMetaType::Bool:
        out.append(value.toBool() ? "true" : "false");
        return true;
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::Long:
    case QMetaType::LongLong:
    case QMetaType::SChar:
        writeInteger(out, value.toLongLong());
        return true;
    case QMetaType::UInt:
    case QMetaType::UShort:
    case QMetaType::ULong:
    case QMetaType::ULongLong:
    case QMetaType::UChar:
        writeInteger(out, value.toULongLong());
        return true;
    case QMetaType::Double:
    case QMetaType::Float:
        writeDouble(out, value.toDouble());
        return true;
    case QMetaType::QString:
        appendString(out, *static_cast<const QString *>(value.constData()));
        return true;
    case QMetaType::QVariantMap:
        return writeMap(out, *static_cast<const QVariantMap *>(value.constData()), depth);
    case QMetaType::QVariantHash:
        return writeMap(out, *static_cast<const QVariantHash *>(value.constData()), depth);
    case QMetaType::QVariantList:
        return writeList(out, *static_cast<const QVariantList *>(value.constData()), depth);
    case QMetaType::QStringList:
        return writeList(out, *static_cast<const QStringList *>(value.constData()), depth);
    default:
        return false;
    }
}

template <typename Map>
bool OSTJsonWriter::writeMap(QByteArray &out, const Map &map, int depth)
{
    if (++depth > maximumDepth)
        return false;
    out.append('{');
    bool first = true;
    for (auto entry = map.constBegin(); entry != map.constEnd(); ++entry) {
        if (!first)
            out.append(',');
        first = false;
        appendString(out, entry.key());
        out.append(':');
        if (!writeValue(out, entry.value(), depth))
            return false;
    }
    out.append('}');
    return true;
}

template <typename List>
bool OSTJsonWriter::writeList(QByteArray &out, const List &list, int depth)
{
    if (++depth > maximumDepth)
        return false;
    out.append('[');
    bool first = true;
    for (const auto &element : list) {
        if (!first)
            out.append(',');
        first = false;
        if (!writeValue(out, QVariant(element), depth))
            return false;
    }
    out.append(']');
    return true;
}

void OSTJsonWriter::writeDouble(QByteArray &out, double value)
{
    if (!std::isfinite(value)) {
        out.append("null");
        return;
    }
    char buffer[32];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr - buffer);
}

template <typename Integer>
void OSTJsonWriter::writeInteger(QByteArray &out, Integer value)
{
    char buffer[24];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, result.ptr - buffer);
}

} // namespace ostrel
