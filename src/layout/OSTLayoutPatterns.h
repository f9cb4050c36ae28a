#pragma once

// The two regular expressions of layout resolution, compiled once with ICU and shared; each
// thread matches with its own matcher.

#include <QString>
#include <QStringView>

#include <vector>

namespace ostrel {

class OSTLayoutPatterns {
public:
    OSTLayoutPatterns() = delete;

    // The percentage step's pattern, as the screen format defines it.
    static const QString percentagePattern;

    // The reference step's pattern as the screen format defines it. Its nested group (X+(\.X+)+)+
    // backtracks exponentially on an unterminated reference such as "{a.bb.bb.bb.bb..." (every
    // split of each "bb" is tried).
    static const QString partReferencePattern;
    // The pattern used instead: the same character class X = [A-z0-9-_] ("A-z" spans "A" to
    // "z" with the six characters between the alphabets) in the flat form \{X+(?:\.X+)+\}.
    // Both accept exactly the same texts: X-segments separated by single points, at least two,
    // between braces (a repetition of "X+(\.X+)+" only glues such segments together). Neither
    // "." nor "}" is in X, so from a given "{" at most one text can match, and the two
    // patterns find the same matches at the same places. In the flat form a segment can only
    // end where a point or the brace follows, so a failing search gives back each character
    // once: it fails in linear time where the nested form would not finish.
    static const QString referencePattern;

    struct Match {
        qsizetype start = 0;
        qsizetype length = 0;
    };

    enum class Search { Found, NotFound, Failed };

    // The leftmost match of the percentage pattern in `text` that starts at or after `from`,
    // as a search from `from` with ICU gives it. Failed on an ICU error.
    static Search findPercentage(QStringView text, qsizetype from, Match &match);
    // The same when the caller knows where that first "%" at or after `from` is.
    static Search matchPercentage(QStringView text, qsizetype from, qsizetype percent,
                                  Match &match);

    // Every match of the reference pattern in `text`, left to right, without overlap. False on
    // an ICU error.
    static bool findReferences(QStringView text, std::vector<Match> &matches);

    // The first position of `c` at or after `from`, or -1: a plain loop, cheaper than Qt's
    // general search on the short texts of formulas.
    static qsizetype indexOf(QStringView text, char16_t c, qsizetype from = 0)
    {
        const char16_t *const data = text.utf16();
        for (qsizetype index = from < 0 ? 0 : from; index < text.size(); ++index) {
            if (data[index] == c)
                return index;
        }
        return -1;
    }
};

} // namespace ostrel
