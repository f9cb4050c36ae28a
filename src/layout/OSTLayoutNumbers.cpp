#include "layout/OSTLayoutNumbers.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <system_error>

namespace ostrel {

QString OSTLayoutNumbers::twoDecimals(double value)
{
    char buffer[400];
    return QString::fromLatin1(buffer, writeTwoDecimals(value, buffer, sizeof buffer));
}

qsizetype OSTLayoutNumbers::writeTwoDecimals(double value, char *buffer, qsizetype size)
{
    // std::to_chars is specified as printf in the C locale, whatever the process locale is
    // (QCoreApplication applies the user's locale to the C library, so snprintf would not do).
    const auto write = [&](const char *text) {
        const qsizetype length = qsizetype(std::strlen(text));
        std::memcpy(buffer, text, size_t(length));
        return length;
    };
    if (std::isnan(value))
        return write("nan");
    if (std::isinf(value))
        return write(value > 0 ? "inf" : "-inf");
    const std::to_chars_result result =
        std::to_chars(buffer, buffer + size, value, std::chars_format::fixed, 2);
    if (result.ec != std::errc())
        return 0; // the largest double has 309 integer digits, so 400 bytes always do
    return result.ptr - buffer;
}

namespace {

// Writes the digits at the end of `buffer` (24 characters); returns where they begin.
char16_t *writeDigits(char16_t *end, qint64 value)
{
    char16_t *start = end;
    std::uint64_t magnitude = value < 0 ? 0 - std::uint64_t(value) : std::uint64_t(value);
    do {
        *--start = char16_t(u'0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude);
    if (value < 0)
        *--start = u'-';
    return start;
}

} // namespace

qsizetype OSTLayoutNumbers::writeInteger(qint64 value, char16_t *buffer)
{
    char16_t digits[24];
    const char16_t *start = writeDigits(digits + 24, value);
    const qsizetype length = digits + 24 - start;
    std::copy(start, start + length, buffer);
    return length;
}

// For a whole percent below 10^12 the nearest double to percent / 100 lies far closer than half
// a hundredth to it, so the digits are those of the integer itself.
qsizetype OSTLayoutNumbers::writeHundredths(double wholePercent, char16_t *buffer)
{
    if (wholePercent >= 0 && wholePercent < 1e12) {
        const auto whole = qint64(wholePercent);
        qsizetype length = writeInteger(whole / 100, buffer);
        buffer[length++] = u'.';
        buffer[length++] = char16_t(u'0' + whole % 100 / 10);
        buffer[length++] = char16_t(u'0' + whole % 10);
        return length;
    }
    char digits[400];
    const qsizetype length = writeTwoDecimals(wholePercent / 100.0, digits, sizeof digits);
    std::copy(digits, digits + length, buffer);
    return length;
}

std::optional<qint64> OSTLayoutNumbers::truncatedInteger(double value)
{
    if (!(value >= -9223372036854775808.0 && value < 9223372036854775808.0))
        return std::nullopt;
    return static_cast<qint64>(value);
}

double OSTLayoutNumbers::decimalValue(QStringView text)
{
    qsizetype end = 0;
    qsizetype point = -1;
    bool sawDigit = false;
    bool significantIntegerDigit = false;
    // The digits as an integer, while it stays exact in a double, and the count of digits
    // after the point.
    std::uint64_t mantissa = 0;
    bool mantissaExact = true;
    int fractionDigits = 0;
    while (end < text.size()) {
        const char16_t c = text[end].unicode();
        if (c >= u'0' && c <= u'9') {
            sawDigit = true;
            if (point < 0 && c != u'0')
                significantIntegerDigit = true;
            if (point >= 0)
                ++fractionDigits;
            if (mantissa > (std::uint64_t(1) << 53) / 10)
                mantissaExact = false;
            else
                mantissa = mantissa * 10 + (c - u'0');
        } else if (c == u'.' && point < 0) {
            point = end;
        } else {
            break;
        }
        ++end;
    }
    if (!sawDigit)
        return 0.0;

    // Both the integer and the power of ten are exact doubles, so their quotient is the
    // correctly rounded value, as the full conversion below would give it.
    static constexpr double powersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                             1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                             1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
    if (mantissaExact && mantissa <= (std::uint64_t(1) << 53) && fractionDigits <= 22)
        return double(mantissa) / powersOfTen[fractionDigits];

    // ".5" and "5." are read as "0.5" and "5": std::from_chars wants a digit before the point.
    std::string ascii;
    ascii.reserve(static_cast<size_t>(end) + 1);
    if (text[0] == u'.')
        ascii.push_back('0');
    for (qsizetype index = 0; index < end; ++index)
        ascii.push_back(static_cast<char>(text[index].unicode()));
    if (ascii.back() == '.')
        ascii.pop_back();

    double value = 0.0;
    const std::from_chars_result result =
        std::from_chars(ascii.data(), ascii.data() + ascii.size(), value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range)
        return significantIntegerDigit ? std::numeric_limits<double>::infinity() : 0.0;
    if (result.ec != std::errc())
        return 0.0;
    return value;
}

bool OSTLayoutNumbers::isCanonicalInteger(QStringView text)
{
    qsizetype index = 0;
    const bool negative = !text.isEmpty() && text[0] == u'-';
    if (negative)
        index = 1;
    const qsizetype digits = text.size() - index;
    if (digits <= 0 || digits > 19)
        return false;
    if (text[index] == u'0')
        return digits == 1 && !negative; // "0"; "-0" reads as 0 and formats as "0"
    quint64 magnitude = 0;
    for (; index < text.size(); ++index) {
        const char16_t c = text[index].unicode();
        if (c < u'0' || c > u'9')
            return false;
        magnitude = magnitude * 10 + (c - u'0'); // at most 19 digits: no overflow of 64 bits
    }
    const quint64 limit = negative ? quint64(std::numeric_limits<qint64>::max()) + 1
                                   : quint64(std::numeric_limits<qint64>::max());
    return magnitude <= limit;
}

} // namespace ostrel
