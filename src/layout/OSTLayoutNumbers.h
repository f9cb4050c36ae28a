#pragma once

// The number texts of the layout engine. Layout attributes stay strings throughout resolution,
// so the exact digits of every number written into them are part of the result:
// these are the readings and writings the engine uses, free of the process locale.

#include <QString>
#include <QStringView>

#include <optional>

namespace ostrel {

class OSTLayoutNumbers {
public:
    OSTLayoutNumbers() = delete;

    // "%.2f" of the C library: two decimals, point as separator, the exact binary value rounded
    // (ties to even), "inf", "-inf" and "nan" for the special values.
    static QString twoDecimals(double value);
    // The same written into `buffer` (ASCII, at least 400 bytes); returns the length.
    static qsizetype writeTwoDecimals(double value, char *buffer, qsizetype size);

    // "%ld" written into `buffer` (24 characters): the integer in decimal, a minus sign when
    // negative. Returns the length.
    static qsizetype writeInteger(qint64 value, char16_t *buffer);

    // "%.2f" of `wholePercent` / 100 written into `buffer` (at least 400 characters), as
    // percentages are written into formulas; returns the length.
    static qsizetype writeHundredths(double wholePercent, char16_t *buffer);

    // The integer part of a computed result, or nothing when it is not a number or does not fit
    // in 64 bits.
    static std::optional<qint64> truncatedInteger(double value);

    // The double value of the leading decimal number of `text` (digits, optionally a point and
    // digits; no sign, no exponent), as the platform's string-to-double reading gives it: 0 when
    // the text does not begin with one, infinity when it is too large for a double.
    static double decimalValue(QStringView text);

    // Whether "%ld" of the integer reading of `text` gives `text` back exactly: an optional minus
    // sign and digits without leading zeros ("0" itself allowed, "-0" not), within 64 bits.
    static bool isCanonicalInteger(QStringView text);
};

} // namespace ostrel
