// The reference search of layout resolution on the edges of its character class, and hostile
// formulas that must stay cheap. Agreement with ICU on arbitrary formulas is the fuzzer's job.

#include "OSTLayoutTestSupport.h"

#include "layout/OSTLayoutManager.h"
#include "layout/OSTLayoutPatterns.h"
#include "screen/OSTScreenDocument.h"

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

using Match = OSTLayoutPatterns::Match;

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
    OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), QRectF(0, 0, 375, 667), 20);
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"y"_s), QString(49999, u'{') + u"0"_s);
}
