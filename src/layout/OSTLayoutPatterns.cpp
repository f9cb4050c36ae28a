#include "layout/OSTLayoutPatterns.h"

#include <unicode/regex.h>

#include <algorithm>
#include <memory>

namespace ostrel {

const QString OSTLayoutPatterns::percentagePattern =
    QStringLiteral(u"[0-1]{0,1}[0-9]{0,2}[\\.]{0,1}[0-9]*%");
const QString OSTLayoutPatterns::partReferencePattern =
    QStringLiteral(u"\\{([A-z0-9-_]+(\\.[A-z0-9-_]+)+)+\\}");
const QString OSTLayoutPatterns::referencePattern =
    QStringLiteral(u"\\{[A-z0-9-_]+(?:\\.[A-z0-9-_]+)+\\}");

namespace {

// Compiled once, on first use, and never freed: matchers of other threads may outlive any
// static destructor order.
const icu::RegexPattern *compile(const QString &pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    const icu::UnicodeString source(false, reinterpret_cast<const UChar *>(pattern.utf16()),
                                    static_cast<int32_t>(pattern.size()));
    icu::RegexPattern *compiled = icu::RegexPattern::compile(source, 0, parseError, status);
    if (U_FAILURE(status)) {
        delete compiled;
        return nullptr;
    }
    return compiled;
}

const icu::RegexPattern *percentageRegex()
{
    static const icu::RegexPattern *const compiled = compile(OSTLayoutPatterns::percentagePattern);
    return compiled;
}

const icu::RegexPattern *referenceRegex()
{
    static const icu::RegexPattern *const compiled = compile(OSTLayoutPatterns::referencePattern);
    return compiled;
}

// A matcher of `pattern` for this thread, set on `text`, which must outlive its use.
class Matching {
public:
    Matching(std::unique_ptr<icu::RegexMatcher> &matcher, const icu::RegexPattern *pattern,
             QStringView text)
        : m_text(false, reinterpret_cast<const UChar *>(text.utf16()),
                 text.size() > INT32_MAX ? 0 : int32_t(text.size()))
    {
        if (!pattern || text.size() > INT32_MAX)
            return;
        if (!matcher) {
            UErrorCode status = U_ZERO_ERROR;
            matcher.reset(pattern->matcher(status));
            if (U_FAILURE(status)) {
                matcher.reset();
                return;
            }
        }
        matcher->reset(m_text);
        m_matcher = matcher.get();
    }
    Matching(const Matching &) = delete;
    Matching &operator=(const Matching &) = delete;

    icu::RegexMatcher *matcher() const { return m_matcher; }

private:
    const icu::UnicodeString m_text; // a read-only alias of the text, no copy
    icu::RegexMatcher *m_matcher = nullptr;
};

bool isDigitOrPoint(QChar c)
{
    return (c >= u'0' && c <= u'9') || c == u'.';
}

} // namespace

OSTLayoutPatterns::Search OSTLayoutPatterns::findPercentage(QStringView text, qsizetype from,
                                                            Match &match)
{
    const qsizetype percent = indexOf(text, u'%', from);
    if (percent < 0)
        return Search::NotFound;
    return matchPercentage(text, from, percent, match);
}

OSTLayoutPatterns::Search OSTLayoutPatterns::matchPercentage(QStringView text, qsizetype from,
                                                             qsizetype percent, Match &match)
{
    // Every match is digits and points followed by one "%", and a "%" alone matches. So the
    // leftmost match from `from` ends at the first "%" at or after `from` and begins within
    // the run of digits and points just before it. Within that run, the pattern takes at most
    // one point, with at most three digits before it: a match begins after the second point
    // from the end of the run, and no more than three places before the last one. ICU
    // searches only the places that remain, which gives the match a search of the whole text
    // gives, in time linear in the run rather than quadratic (the backtracking of [0-9]* over
    // each start in a long run of digits).
    qsizetype start = percent;
    qsizetype lastPoint = -1;
    while (start > from && isDigitOrPoint(text[start - 1])) {
        if (text[start - 1] == u'.') {
            if (lastPoint >= 0)
                break; // a second point: matches begin after it
            lastPoint = start - 1;
        }
        --start;
    }
    // Digits alone always match whole ([0-1]{0,1} and [0-9]{0,2} taking nothing and [0-9]*
    // every digit), so the match is the region itself. Only a run with a point needs ICU.
    if (lastPoint < 0) {
        match.start = start;
        match.length = percent + 1 - start;
        return Search::Found;
    }
    start = std::max(start, lastPoint - 3);

    thread_local std::unique_ptr<icu::RegexMatcher> matcher;
    Matching matching(matcher, percentageRegex(), text);
    icu::RegexMatcher *m = matching.matcher();
    if (!m)
        return Search::Failed;
    UErrorCode status = U_ZERO_ERROR;
    m->region(start, percent + 1, status);
    if (U_FAILURE(status))
        return Search::Failed;
    const bool found = m->find(status);
    if (U_FAILURE(status) || !found)
        return Search::Failed; // cannot happen: "%" alone matches
    const int64_t matchStart = m->start64(status);
    const int64_t matchEnd = m->end64(status);
    if (U_FAILURE(status))
        return Search::Failed;
    match.start = matchStart;
    match.length = matchEnd - matchStart;
    return Search::Found;
}

bool OSTLayoutPatterns::findReferences(QStringView text, std::vector<Match> &matches)
{
    matches.clear();
    if (indexOf(text, u'{') < 0)
        return true;
    thread_local std::unique_ptr<icu::RegexMatcher> matcher;
    Matching matching(matcher, referenceRegex(), text);
    icu::RegexMatcher *m = matching.matcher();
    if (!m)
        return false;
    // Every match begins with "{": after the last one, the search is over.
    qsizetype lastBrace = text.size() - 1;
    while (text[lastBrace] != u'{')
        --lastBrace;
    UErrorCode status = U_ZERO_ERROR;
    while (m->find(status)) {
        const int64_t start = m->start64(status);
        const int64_t end = m->end64(status);
        if (U_FAILURE(status))
            return false;
        matches.push_back(Match{start, end - start});
        if (end > lastBrace)
            break;
    }
    return U_SUCCESS(status);
}

} // namespace ostrel
