#include "core/OSTRegularExpression.h"

#include "core/OSTLogging.h"

#include <unicode/regex.h>

#include <climits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// Steps of the match engine, roughly milliseconds: far beyond what a phone number or a form
// field needs, short enough that a runaway pattern cannot freeze the screen.
constexpr int32_t matchTimeLimit = 200;

icu::UnicodeString unicodeStringOf(QStringView text)
{
    return icu::UnicodeString(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
}

QString qStringOf(const icu::UnicodeString &text)
{
    return QString(reinterpret_cast<const QChar *>(text.getBuffer()), text.length());
}

std::shared_ptr<const icu::RegexPattern> compile(const QString &pattern)
{
    if (pattern.size() > INT32_MAX)
        return nullptr;
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::shared_ptr<const icu::RegexPattern> compiled(
        icu::RegexPattern::compile(unicodeStringOf(pattern), 0, parseError, status));
    if (U_FAILURE(status)) {
        OSTLogging::logDebug(u"The pattern \"%1\" does not compile: %2"_s, pattern, QString::fromUtf8(u_errorName(status)));
        return nullptr;
    }
    return compiled;
}

// A matcher over `subject` (which must outlive it), or null.
std::unique_ptr<icu::RegexMatcher> matcherOf(const icu::RegexPattern &pattern, const icu::UnicodeString &subject)
{
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(subject, status));
    if (U_FAILURE(status))
        return nullptr;
    matcher->setTimeLimit(matchTimeLimit, status);
    if (U_FAILURE(status))
        return nullptr;
    return matcher;
}

void logSearchFailure(const QString &pattern, UErrorCode status)
{
    OSTLogging::logDebug(u"Searching with the pattern \"%1\" failed: %2"_s, pattern, QString::fromUtf8(u_errorName(status)));
}

} // namespace

OSTRegularExpression::OSTRegularExpression(const QString &pattern)
    : m_pattern(pattern),
      m_compiled(compile(pattern))
{
}

QString OSTRegularExpression::firstMatch(QStringView text) const
{
    if (!m_compiled || text.size() > INT32_MAX)
        return {};
    const icu::UnicodeString subject = unicodeStringOf(text);
    const std::unique_ptr<icu::RegexMatcher> matcher = matcherOf(*m_compiled, subject);
    if (!matcher)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    if (!matcher->find(status)) {
        if (U_FAILURE(status))
            logSearchFailure(m_pattern, status);
        return {};
    }
    const icu::UnicodeString match = matcher->group(status);
    return U_SUCCESS(status) ? qStringOf(match) : QString();
}

qsizetype OSTRegularExpression::numberOfMatches(QStringView text) const
{
    if (!m_compiled || text.size() > INT32_MAX)
        return 0;
    const icu::UnicodeString subject = unicodeStringOf(text);
    const std::unique_ptr<icu::RegexMatcher> matcher = matcherOf(*m_compiled, subject);
    if (!matcher)
        return 0;
    qsizetype count = 0;
    UErrorCode status = U_ZERO_ERROR;
    while (matcher->find(status))
        ++count;
    if (U_FAILURE(status)) {
        logSearchFailure(m_pattern, status);
        return 0;
    }
    return count;
}

QString OSTRegularExpression::replacingMatches(QStringView text, const QString &replacement) const
{
    if (!m_compiled || text.size() > INT32_MAX)
        return text.toString();
    const icu::UnicodeString subject = unicodeStringOf(text);
    const std::unique_ptr<icu::RegexMatcher> matcher = matcherOf(*m_compiled, subject);
    if (!matcher)
        return text.toString();
    UErrorCode status = U_ZERO_ERROR;
    const icu::UnicodeString replaced = matcher->replaceAll(unicodeStringOf(replacement), status);
    if (U_FAILURE(status)) {
        logSearchFailure(m_pattern, status);
        return text.toString();
    }
    return qStringOf(replaced);
}

} // namespace ostrel
