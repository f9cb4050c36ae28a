#pragma once

#include <QString>

namespace ostrel {

// The text operations of phone numbers: cleaning what users type or paste, and formatting it
// live under a calling code. Each regular expression is searched over the whole text and every
// match replaced; "digits" are Unicode decimal digits. Pure functions, any thread.
class OSTPhoneNumberFormatter {
public:
    enum class Mode { Formatted, Raw };

    OSTPhoneNumberFormatter() = delete;

    // Removes plus signs, parentheses, blanks and hyphens; everything else stays.
    static QString rawPhoneNumber(const QString &text);
    // Removes every calling-code prefix ("+", digits, one blank), then everything but digits.
    static QString cleanPhoneNumber(const QString &text);
    // The first calling-code prefix, when there is one, followed by the clean digits.
    static QString normalizedPhoneNumber(const QString &text);
    // "(123) 456-7890" as the digits come (four to six digits give "(123) 456", three or fewer
    // stay as they are), at most 14 characters.
    static QString formatUSPhoneNumber(const QString &text);
    // The clean digits, at most 26 characters.
    static QString formatOtherPhoneNumber(const QString &text);
    // What a phone field shows once a country is chosen: the digits of `text` (every copy of the
    // code removed first) formatted for the country, after the code and a blank; "" without
    // digits. Raw gives the bare digits.
    static QString liveFormattedPhoneNumber(const QString &text, const QString &code, const QString &country,
                                            Mode mode);
};

} // namespace ostrel
