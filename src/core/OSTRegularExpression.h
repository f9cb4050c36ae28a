#pragma once

#include <QString>
#include <QStringView>

#include <unicode/uversion.h>

#include <memory>

U_NAMESPACE_BEGIN
class RegexPattern;
U_NAMESPACE_END

namespace ostrel {

// A compiled ICU regular expression (the syntax screen descriptions are written in), searched
// over the whole text. Patterns come from the SDK and from servers, so a pattern that does not
// compile, or a search that runs past the engine's time limit (a hostile pattern that backtracks
// without end), counts as no match instead of hanging the host; both are logged at debug level.
//
// A value type: copies share the immutable compiled pattern, and every search makes its own
// matcher, so one expression may be used from any thread.
class OSTRegularExpression {
public:
    explicit OSTRegularExpression(const QString &pattern);

    bool isValid() const { return m_compiled != nullptr; }
    const QString &pattern() const { return m_pattern; }

    // The text of the first match; empty when there is none.
    QString firstMatch(QStringView text) const;
    // How many non-overlapping matches the text holds.
    qsizetype numberOfMatches(QStringView text) const;
    // Every match replaced by `replacement`, in which "$1" names the first group. Without a
    // match, or when the search fails, the text comes back unchanged.
    QString replacingMatches(QStringView text, const QString &replacement) const;

private:
    QString m_pattern;
    std::shared_ptr<const icu::RegexPattern> m_compiled;
};

} // namespace ostrel
