// Building and resolving share work: the table is merged category by category in key order,
// equal formula texts share one compiled program, equal computed results share one string and
// numbers are read once. None of this may show in the results.

#include "OSTLayoutTestSupport.h"

#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QVariantList>
#include <QVariantMap>

#include <gtest/gtest.h>

#include <algorithm>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

QVariantMap frame(const QString &x, const QString &y, const QString &width,
                  const QString &height)
{
    return {{u"x"_s, x}, {u"y"_s, y}, {u"width"_s, width}, {u"height"_s, height}};
}

} // namespace

// Keys that interleave across categories (and sort by UTF-16 code units, as QString does),
// a key in several categories and as a group, members listed out of order, twice, unknown or
// not strings, and a member claimed by two groups.
TEST(LayoutSharedWork, MergedTableKeepsKeyOrderLaterCategoriesAndGroupMembership)
{
    const QString astral = QString::fromUtf8("k\xF0\x9F\x98\x80");  // k + U+1F600 (surrogates)
    const QString highBmp = QString::fromUtf8("k\xEF\xBC\xA1");     // k + U+FF21
    const QVariantMap screen{
        {u"buttons"_s, QVariantMap{{u"b"_s, frame(u"1"_s, u"0"_s, u"1"_s, u"1"_s)},
                                   {u"k"_s, frame(u"2"_s, u"0"_s, u"1"_s, u"1"_s)},
                                   {highBmp, frame(u"3"_s, u"0"_s, u"1"_s, u"1"_s)}}},
        {u"images"_s, QVariantMap{{u"a"_s, frame(u"4"_s, u"0"_s, u"1"_s, u"1"_s)},
                                  {u"k"_s, frame(u"5"_s, u"0"_s, u"1"_s, u"1"_s)},
                                  {astral, frame(u"6"_s, u"0"_s, u"1"_s, u"1"_s)},
                                  {u"z"_s, frame(u"7"_s, u"0"_s, u"1"_s, u"1"_s)}}},
        {u"shapes"_s, QVariantMap{{u"c"_s, frame(u"8"_s, u"0"_s, u"1"_s, u"1"_s)},
                                  {u"g2"_s, frame(u"9"_s, u"0"_s, u"1"_s, u"1"_s)},
                                  {u"notAnObject"_s, u"x"_s}}},
        {u"groups"_s,
         QVariantMap{{u"g1"_s, QVariantMap{{u"elements"_s,
                                            QVariantList{u"z"_s, u"a"_s, u"missing"_s, 7,
                                                         u"b"_s, u"a"_s}}}},
                     {u"g2"_s, QVariantMap{{u"x"_s, u"10"_s},
                                           {u"elements"_s, QVariantList{u"b"_s, u"c"_s}}}}}},
    };
    OSTLayoutManager manager(*OSTScreenDocument::fromLayout(screen), QRectF(0, 0, 375, 667), 20);

    QStringList expectedKeys{u"a"_s, u"b"_s, u"c"_s, u"g1"_s, u"g2"_s, u"k"_s, astral,
                             highBmp, u"z"_s};
    std::sort(expectedKeys.begin(), expectedKeys.end());
    EXPECT_EQ(manager.elements().keys(), expectedKeys);
    EXPECT_EQ(layoutValue(manager, u"k"_s, u"x"_s), u"5"_s);  // the later category stays
    EXPECT_EQ(layoutValue(manager, u"g2"_s, u"x"_s), u"10"_s); // the group replaces the shape

    const auto parentKey = [&](const QString &key) -> QString {
        const auto parent = manager.elements().value(key)->parent();
        if (parent == manager.baseElement())
            return u"screen"_s;
        for (auto entry = manager.elements().constBegin(); entry != manager.elements().constEnd();
             ++entry) {
            if (entry.value() == parent)
                return entry.key();
        }
        return u"none"_s;
    };
    EXPECT_EQ(parentKey(u"a"_s), u"g1"_s);
    EXPECT_EQ(parentKey(u"z"_s), u"g1"_s);
    EXPECT_EQ(parentKey(u"b"_s), u"g2"_s); // the later group wins
    EXPECT_EQ(parentKey(u"c"_s), u"g2"_s);
    EXPECT_EQ(parentKey(astral), u"screen"_s);
}

// Many elements with the same formula texts (one program each), enough distinct results that
// some share a place in the string cache, results equal across elements, and a text that
// cannot compile shared by two elements.
TEST(LayoutSharedWork, SharedFormulasAndResultTextsGiveEachElementItsOwnValue)
{
    QVariantMap shapes;
    for (int index = 0; index < 300; ++index) {
        const QString key = QStringLiteral("e%1").arg(index, 3, 10, QChar(u'0'));
        const QString previous = QStringLiteral("e%1").arg(index - 1, 3, 10, QChar(u'0'));
        shapes.insert(key, frame(u"(100% - width) / 2"_s,
                                 index == 0 ? u"0"_s : u"{"_s + previous + u".y} + 7"_s,
                                 index % 2 ? u"50%"_s : u"width"_s, u"10% + statusBar"_s));
    }
    shapes.insert(u"odd1"_s, frame(u"0"_s, u"0"_s, u"{e000.x}{e000.x}"_s, u"1"_s));
    shapes.insert(u"odd2"_s, frame(u"0"_s, u"0"_s, u"{e000.x}{e000.x}"_s, u"1"_s));
    OSTLayoutManager manager(*OSTScreenDocument::fromLayout({{u"shapes"_s, shapes}}), QRectF(0, 0, 375, 667), 20);

    EXPECT_FALSE(manager.resolveLayout()); // the two odd widths and what needs them
    for (int index = 0; index < 300; ++index) {
        const QString key = QStringLiteral("e%1").arg(index, 3, 10, QChar(u'0'));
        SCOPED_TRACE(key.toStdString());
        EXPECT_EQ(layoutValue(manager, key, u"y"_s), QString::number(index * 7));
        EXPECT_EQ(layoutValue(manager, key, u"height"_s), u"86"_s); // (0.10 * 667.00) + 20.00
        if (index % 2) {
            EXPECT_EQ(layoutValue(manager, key, u"width"_s), u"187"_s);
            EXPECT_EQ(layoutValue(manager, key, u"x"_s), u"94"_s);
        } else {
            // "width" alone is not compiled arithmetic: it keeps its own text, unresolved.
            EXPECT_EQ(layoutValue(manager, key, u"width"_s), u"width"_s);
        }
    }
    // e000.x stays unresolved, so the text the string path leaves is the same for both.
    EXPECT_FALSE(manager.elements().value(u"odd1"_s)->isResolved());
    EXPECT_EQ(layoutValue(manager, u"odd1"_s, u"width"_s),
              layoutValue(manager, u"odd2"_s, u"width"_s));
}
