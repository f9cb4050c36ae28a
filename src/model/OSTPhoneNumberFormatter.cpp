#include "model/OSTPhoneNumberFormatter.h"

#include "core/OSTRegularExpression.h"

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const OSTRegularExpression &formattingCharacters()
{
    static const OSTRegularExpression expression(u"[+() \\-]"_s);
    return expression;
}

const OSTRegularExpression &callingCodePrefix()
{
    static const OSTRegularExpression expression(u"([+]\\d+[ ])"_s);
    return expression;
}

const OSTRegularExpression &nonDigits()
{
    static const OSTRegularExpression expression(u"([\\D]+)"_s);
    return expression;
}

const OSTRegularExpression &usFullNumber()
{
    static const OSTRegularExpression expression(u"(\\d{3})(\\d{3})(\\d+)"_s);
    return expression;
}

const OSTRegularExpression &usShortNumber()
{
    static const OSTRegularExpression expression(u"(\\d{3})(\\d+)"_s);
    return expression;
}

const OSTRegularExpression &digitRuns()
{
    static const OSTRegularExpression expression(u"(\\d+)"_s);
    return expression;
}

constexpr qsizetype usFormattedLength = 14;
constexpr qsizetype otherFormattedLength = 26;
constexpr qsizetype usFullNumberMinimumDigits = 7;

} // namespace

QString OSTPhoneNumberFormatter::rawPhoneNumber(const QString &text)
{
    return formattingCharacters().replacingMatches(text, QString());
}

QString OSTPhoneNumberFormatter::cleanPhoneNumber(const QString &text)
{
    const QString withoutPrefix = callingCodePrefix().replacingMatches(text, QString());
    return nonDigits().replacingMatches(withoutPrefix, QString());
}

QString OSTPhoneNumberFormatter::normalizedPhoneNumber(const QString &text)
{
    return callingCodePrefix().firstMatch(text) + cleanPhoneNumber(text);
}

QString OSTPhoneNumberFormatter::formatUSPhoneNumber(const QString &text)
{
    const QString digits = cleanPhoneNumber(text);
    const QString formatted = digits.size() >= usFullNumberMinimumDigits
                                  ? usFullNumber().replacingMatches(digits, u"($1) $2-$3"_s)
                                  : usShortNumber().replacingMatches(digits, u"($1) $2"_s);
    return formatted.left(usFormattedLength);
}

QString OSTPhoneNumberFormatter::formatOtherPhoneNumber(const QString &text)
{
    return digitRuns().replacingMatches(cleanPhoneNumber(text), u"$1"_s).left(otherFormattedLength);
}

QString OSTPhoneNumberFormatter::liveFormattedPhoneNumber(const QString &text, const QString &code, const QString &country,
                                                         Mode mode)
{
    QString rest = text;
    if (!code.isEmpty())
        rest.remove(code);
    const QString digits = cleanPhoneNumber(rest);
    if (mode == Mode::Raw)
        return digits;
    const QString formatted = country == u"United States"_s ? formatUSPhoneNumber(digits) : formatOtherPhoneNumber(digits);
    return formatted.isEmpty() ? formatted : code + u' ' + formatted;
}

} // namespace ostrel
