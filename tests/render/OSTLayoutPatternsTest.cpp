// The two regular expressions of layout resolution: the engine's searches give exactly what
// ICU gives for the screen format's own patterns, and hostile formulas stay cheap.

#include "OSTLayoutTestSupport.h"

#include "render/OSTLayoutManager.h"
#include "render/OSTLayoutPatterns.h"

#include <unicode/regex.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <vector>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

using Match = OSTLayoutPatterns::Match;

std::unique_ptr<icu::RegexPattern> compilePattern(const QString &pattern)
{
    UErrorCode status = U_ZERO_ERROR;
    UParseError parseError;
    std::unique_ptr<icu::RegexPattern> compiled(icu::RegexPattern::compile(
        icu::UnicodeString(false, reinterpret_cast<const UChar *>(pattern.utf16()),
                           int32_t(pattern.size())),
        0, parseError, status));
    EXPECT_TRUE(U_SUCCESS(status)) << pattern.toStdString();
    return compiled;
}

// Every match of `pattern` in `text` from `from` on, as ICU finds them.
std::vector<Match> icuMatches(const icu::RegexPattern &pattern, const QString &text,
                              qsizetype from = 0)
{
    const icu::UnicodeString input(false, reinterpret_cast<const UChar *>(text.utf16()),
                                   int32_t(text.size()));
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::RegexMatcher> matcher(pattern.matcher(input, status));
    std::vector<Match> matches;
    if (!matcher->find(int64_t(from), status))
        return matches;
    do {
        const int32_t start = matcher->start(status);
        matches.push_back(Match{start, matcher->end(status) - start});
    } while (matcher->find(status));
    EXPECT_TRUE(U_SUCCESS(status));
    return matches;
}

QString randomText(std::mt19937 &random, const char16_t *alphabet, int maximumLength)
{
    const std::u16string_view letters(alphabet);
    QString text;
    for (int length = int(random() % unsigned(maximumLength + 1)); length > 0; --length)
        text.append(QChar(letters[random() % letters.size()]));
    return text;
}

} // namespace

TEST(LayoutPatterns, PercentageSearchIsIcusSearchOfTheFormatsPattern)
{
    EXPECT_EQ(OSTLayoutPatterns::percentagePattern, u"[0-1]{0,1}[0-9]{0,2}[\\.]{0,1}[0-9]*%"_s);
    const auto pattern = compilePattern(OSTLayoutPatterns::percentagePattern);
    std::mt19937 random(11);
    for (int round = 0; round < 50000; ++round) {
        const QString text = randomText(random, u"0123456789..%%%1 x(", 14);
        const qsizetype from = text.isEmpty() ? 0 : qsizetype(random() % quint32(text.size() + 1));
        const std::vector<Match> expected = icuMatches(*pattern, text, from);
        Match match;
        const auto search = OSTLayoutPatterns::findPercentage(text, from, match);
        if (expected.empty()) {
            ASSERT_EQ(search, OSTLayoutPatterns::Search::NotFound)
                << text.toStdString() << " from " << from;
        } else {
            ASSERT_EQ(search, OSTLayoutPatterns::Search::Found)
                << text.toStdString() << " from " << from;
            ASSERT_EQ(match.start, expected.front().start)
                << text.toStdString() << " from " << from;
            ASSERT_EQ(match.length, expected.front().length)
                << text.toStdString() << " from " << from;
        }
    }
}

TEST(LayoutPatterns, ReferenceSearchFindsWhatTheNestedPatternFinds)
{
    EXPECT_EQ(OSTLayoutPatterns::partReferencePattern, u"\\{([A-z0-9-_]+(\\.[A-z0-9-_]+)+)+\\}"_s);
    const auto partPattern = compilePattern(OSTLayoutPatterns::partReferencePattern);
    std::mt19937 random(12);
    // Short texts, so that the nested pattern finishes; with the characters around the class
    // boundaries: "@" and "{" just outside "A-z", "[" "\" "]" "^" "_" "`" inside it.
    for (int round = 0; round < 50000; ++round) {
        const QString text = randomText(random, u"{{}}..ab_-Z9@[\\]^`|{.a", 16);
        std::vector<Match> matches;
        ASSERT_TRUE(OSTLayoutPatterns::findReferences(text, matches));
        const std::vector<Match> expected = icuMatches(*partPattern, text);
        ASSERT_EQ(matches.size(), expected.size()) << text.toStdString();
        for (size_t index = 0; index < matches.size(); ++index) {
            ASSERT_EQ(matches[index].start, expected[index].start) << text.toStdString();
            ASSERT_EQ(matches[index].length, expected[index].length) << text.toStdString();
        }
    }
}

TEST(LayoutPatterns, TheClassAToZIncludesThePunctuationBetweenTheAlphabets)
{
    std::vector<Match> matches;
    ASSERT_TRUE(
        OSTLayoutPatterns::findReferences(u"{a[b].x} {a`^\\_.y} {a@.x} {a|.x} {a-1.b.c}", matches));
    ASSERT_EQ(matches.size(), 3u);
    EXPECT_EQ(matches[0].start, 0);
    EXPECT_EQ(matches[0].length, 8);
    EXPECT_EQ(matches[1].start, 9);
    EXPECT_EQ(matches[2].start, 33);

    OSTLayoutManager manager =
        layoutManager(R"({"shapes": {"a[1]": {"x": "12"}, "b": {"x": "{a[1].x} + 1"}}})");
    ASSERT_TRUE(manager.resolveLayout());
    EXPECT_EQ(layoutValue(manager, u"b"_s, u"x"_s), u"13"_s);
}

TEST(LayoutPatterns, HostileFormulasResolveWithoutBacktrackingForever)
{
    // Unterminated references on which the nested pattern would try every split of every
    // "bb": 2^3000 ways. And long runs of digits before and without a "%".
    QString unterminated = u"{a"_s;
    for (int segment = 0; segment < 3000; ++segment)
        unterminated += u".bb"_s;
    const QString digits(200000, u'7');
    QString references;
    for (int reference = 0; reference < 20000; ++reference)
        references += QStringLiteral("{z%1.x}").arg(reference);
    const QVariantMap screen{
        {u"shapes"_s,
         QVariantMap{
             {u"a"_s, QVariantMap{{u"x"_s, unterminated}, {u"y"_s, digits + u" + 1%"_s}}},
             {u"b"_s, QVariantMap{{u"x"_s, digits + u".5.5%"_s}, {u"y"_s, digits + u"%"_s}}},
             {u"c"_s,
              QVariantMap{{u"x"_s, QString(100000, u'%')},
                          {u"y"_s, QString(50000, u'{') + u"zz.x}"_s}}},
             {u"d"_s, QVariantMap{{u"x"_s, references}, {u"y"_s, u'{' + references}}}}}};
    OSTLayoutManager manager(screen, QRectF(0, 0, 375, 667), 20);
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"y"_s), QString(49999, u'{') + u"0"_s);
}
