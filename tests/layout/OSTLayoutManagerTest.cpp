// Building the element table from the screen JSON, and resolving the formulas into frames.

#include "OSTLayoutTestSupport.h"

#include "core/OSTLogging.h"
#include "layout/OSTLayoutManager.h"
#include "support/OSTTestSupport.h"

#include <QGuiApplication>
#include <QScreen>

#include <gtest/gtest.h>

#include <utility>
#include <vector>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

QString value(const OSTLayoutManager &manager, const char *key, const char *attribute)
{
    return layoutValue(manager, QString::fromUtf8(key), QString::fromUtf8(attribute));
}

} // namespace

// --- Building ---------------------------------------------------------------------------------

TEST(LayoutManagerBuilding, BaseElementIsTheScreenWithTwoDecimals)
{
    const OSTLayoutManager manager = layoutManager("{}", 375, 667);
    const auto &base = *manager.baseElement();
    EXPECT_EQ(base.valueOfAttribute(u"width"_s), u"375.00"_s);
    EXPECT_EQ(base.valueOfAttribute(u"height"_s), u"667.00"_s);
    EXPECT_FALSE(base.valueOfAttribute(u"x"_s));
    EXPECT_FALSE(base.valueOfAttribute(u"y"_s));
    EXPECT_TRUE(base.isResolved());
    EXPECT_EQ(base.frame(), QRectF(0, 0, 375, 667));
    EXPECT_TRUE(manager.elements().isEmpty());
}

TEST(LayoutManagerBuilding, CategoriesGiveDefaultLayersAndTheScreenAsParent)
{
    const OSTLayoutManager manager = layoutManager(R"({
        "shapes": {"s": {}}, "images": {"i": {}}, "labels": {"l": {}},
        "inputs": {"n": {}}, "buttons": {"b": {}}, "groups": {"g": {}},
        "other": {"o": {}}})");
    const auto &elements = manager.elements();
    ASSERT_EQ(elements.keys(), (QStringList{u"b"_s, u"g"_s, u"i"_s, u"l"_s, u"n"_s, u"s"_s}));
    const std::pair<QString, int> defaultLayers[] = {{u"s"_s, 200}, {u"i"_s, 300}, {u"g"_s, 400},
                                                     {u"l"_s, 500}, {u"n"_s, 600}, {u"b"_s, 700}};
    for (const auto &[key, layer] : defaultLayers) {
        EXPECT_EQ(elements.value(key)->zLayer(), layer) << key.toStdString();
        EXPECT_EQ(elements.value(key)->parent(), manager.baseElement());
    }
    EXPECT_EQ(manager.elementKeysSortedByZLayer(),
              (QStringList{u"s"_s, u"i"_s, u"g"_s, u"l"_s, u"n"_s, u"b"_s}));
}

TEST(LayoutManagerBuilding, LayersSortAscendingAndStablyInKeyOrder)
{
    const OSTLayoutManager manager = layoutManager(R"({
        "shapes": {"d": {"zLayer": 5}, "c": {"zLayer": "5"}, "b": {"zLayer": -3},
                   "a": {"zLayer": 900}, "e": {"zLayer": 0}, "f": {"zLayer": "7.9"}},
        "labels": {"g": {"zLayer": -1}, "h": {"zLayer": "high"}}})");
    EXPECT_EQ(manager.elementKeysSortedByZLayer(),
              (QStringList{u"e"_s, u"c"_s, u"d"_s, u"f"_s, u"b"_s, u"g"_s, u"h"_s, u"a"_s}));
}

TEST(LayoutManagerBuilding, GroupsBecomeParentsOfTheirListedElements)
{
    const OSTLayoutManager manager = layoutManager(R"({
        "shapes": {"a": {}, "b": {}, "c": {}, "box": {"x": "1"}},
        "groups": {
            "box": {"elements": ["a", "nobody", 7, "b"]},
            "card": {"elements": ["b", "c"], "zLayer": 450},
            "plain": {"elements": "a"}}})");
    const auto &elements = manager.elements();
    const auto box = elements.value(u"box"_s);
    const auto card = elements.value(u"card"_s);
    EXPECT_EQ(value(manager, "box", "x"), u"0"_s) << "the group replaced the shape of that key";
    EXPECT_EQ(box->zLayer(), 400);
    EXPECT_EQ(card->zLayer(), 450);
    EXPECT_EQ(box->parent(), manager.baseElement());
    EXPECT_EQ(elements.value(u"a"_s)->parent(), box)
        << "unknown and non-string members are skipped";
    EXPECT_EQ(elements.value(u"b"_s)->parent(), card) << "the group processed last wins";
    EXPECT_EQ(elements.value(u"c"_s)->parent(), card);
    EXPECT_EQ(elements.value(u"plain"_s)->parent(), manager.baseElement());
}

TEST(LayoutManagerBuilding, ScreenBoundsArePortraitOrdered)
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    ASSERT_NE(screen, nullptr);
    const QRect geometry = screen->geometry();
    const QRectF bounds = OSTLayoutManager::screenBounds();
    EXPECT_EQ(bounds.width(), std::min(geometry.width(), geometry.height()));
    EXPECT_EQ(bounds.height(), std::max(geometry.width(), geometry.height()));
    EXPECT_EQ(bounds.topLeft(), QPointF(geometry.topLeft()));

    const OSTLayoutManager manager(*OSTScreenDocument::fromLayout({}));
    EXPECT_EQ(manager.baseElement()->frame().size(), bounds.size());
    EXPECT_EQ(manager.statusBarHeight(), 0.0) << "desktop windows have no status bar";
}

// --- Updating one element ---------------------------------------------------------------------

TEST(LayoutManagerUpdate, ReplacesTheFrameOfAnUnresolvedElementOnly)
{
    OSTLayoutManager manager =
        layoutManager(R"({"labels": {"errorMessage": {"y": "50%", "height": "40"}}})");
    manager.updateLayout(frameJson(R"({"y": "100", "width": 80, "anchored": "no"})"),
                         u"errorMessage"_s);
    EXPECT_EQ(value(manager, "errorMessage", "x"), u"0"_s);
    EXPECT_EQ(value(manager, "errorMessage", "y"), u"100"_s);
    EXPECT_EQ(value(manager, "errorMessage", "width"), u"100%"_s)
        << "a number is not a frame value";
    EXPECT_EQ(value(manager, "errorMessage", "height"), u"100%"_s);
    EXPECT_TRUE(manager.elements().value(u"errorMessage"_s)->isAnchored())
        << "only the frame changes";
    ASSERT_TRUE(manager.resolveLayout());
    EXPECT_EQ(manager.frameForKey(u"errorMessage"_s), QRectF(0, 100, 375, 667));

    // An element whose values are all numbers, or an unknown key, ignores the update.
    OSTLayoutManager fixed = layoutManager(R"({"labels": {"errorMessage":
        {"x": "10", "y": "20", "width": "30", "height": "40"}}})");
    fixed.updateLayout(frameJson(R"({"y": "100"})"), u"errorMessage"_s);
    fixed.updateLayout(frameJson(R"({"y": "100"})"), u"unknown"_s);
    EXPECT_EQ(value(fixed, "errorMessage", "y"), u"20"_s);
    EXPECT_EQ(fixed.elements().size(), 1);
    ASSERT_TRUE(fixed.resolveLayout());
    EXPECT_EQ(fixed.frameForKey(u"errorMessage"_s), QRectF(10, 20, 30, 40));
}

// --- Resolution: worked results ---------------------------------------------------------------

TEST(LayoutResolution, WorkedFormulasGiveTheirTextsAndFrames)
{
    struct Case {
        const char *json;
        std::vector<std::pair<const char *, const char *>> values; // "key.attribute", text
        std::vector<std::pair<const char *, QRectF>> frames;
        double width = 375;
        double height = 667;
    };
    const Case cases[] = {
        // Without frame keys an element fills its parent.
        {R"({"shapes": {"fill": {}}})", {{"fill.width", "375.00"}}, {{"fill", QRectF(0, 0, 375, 667)}}},
        // (0.50 * 375.00) truncated, then (375.00 - 187) / 2 truncated.
        {R"({"shapes": {"logo": {"x": "(100% - width) / 2", "width": "50%", "height": "20"}}})",
         {{"logo.width", "187"}, {"logo.x", "94"}}, {{"logo", QRectF(94, 0, 187, 20)}}},
        // A fractional percent rounds up to a whole one: (0.34 * 320.00) is 108.8.
        {R"({"shapes": {"card": {"width": "33.5%"}}})", {{"card.width", "108"}}, {}, 320, 568},
        // 100% keeps the parent's decimals.
        {R"({"shapes": {"page": {"height": "100%"}}})", {{"page.height", "667.00"}}, {}},
        // Plain numbers and single references keep their text; computed results are truncated.
        {R"({"shapes": {"a": {"x": "12.75", "y": "{b.height}", "height": "{a.x} + 0.5"}, "b": {"height": "007.50"}}})",
         {{"a.x", "12.75"}, {"a.y", "007.50"}, {"a.height", "13"}}, {{"a", QRectF(12.75, 7.5, 375, 13)}}},
        // A reference to a missing element counts as zero.
        {R"({"labels": {"hint": {"y": "{missing.y} + 20"}}})", {{"hint.y", "20"}}, {}},
        // "field" comes before "title" in the table, so its first visit finds title unresolved.
        {R"({"labels": {"title": {"y": "10% + 33", "height": "{title.width} / 10", "width": "80%"}},
             "inputs": {"field": {"y": "{title.y} + {title.height} + 10", "x": "{title.x}"}}})",
         {{"title.y", "99"}, {"title.width", "300"}, {"title.height", "30"}, {"field.y", "139"}, {"field.x", "0"}},
         {}},
        // Own attributes are substituted by name.
        {R"({"images": {"photo": {"width": "200", "height": "width * 0.5", "y": "height + x", "x": "3"}}})",
         {{"photo.height", "100"}, {"photo.y", "103"}}, {}},
        // statusBar is the status bar's height.
        {R"({"labels": {"top": {"y": "statusBar"}, "below": {"y": "statusBar + 10.5"}}})",
         {{"top.y", "20.00"}, {"below.y", "30"}}, {{"top", QRectF(0, 20, 375, 667)}}},
        // Group members are placed inside the group; 100% is of the group's text.
        {R"({"groups": {"panel": {"x": "25%", "y": "100", "width": "50%", "height": "50%", "elements": ["caption"]}},
             "labels": {"caption": {"x": "10", "width": "100%", "height": "10%"}}})",
         {{"caption.width", "187"}}, {{"panel", QRectF(93, 100, 187, 333)}, {"caption", QRectF(10, 0, 187, 33)}}},
        // Precedence, truncation toward zero, and 0.29 * 100 being 28.999999999999996 in doubles.
        {R"({"shapes": {"a": {"x": "2 + 3 * 4 - 10 / 4", "y": "-(2 - 9.9) - 1",
                              "width": "((1 + 2) * (3 + 4)) / 2", "height": "0.29 * 100"}}})",
         {{"a.x", "11"}, {"a.y", "6"}, {"a.width", "10"}, {"a.height", "28"}}, {}},
    };
    for (const Case &test : cases) {
        OSTLayoutManager manager = layoutManager(test.json, test.width, test.height);
        ASSERT_TRUE(manager.resolveLayout()) << test.json;
        for (const auto &[path, expected] : test.values) {
            const QStringList parts = QString::fromUtf8(path).split(u'.');
            EXPECT_EQ(layoutValue(manager, parts[0], parts[1]), QString::fromUtf8(expected)) << path << " in " << test.json;
        }
        for (const auto &[key, frame] : test.frames)
            EXPECT_EQ(manager.frameForKey(QString::fromUtf8(key)), frame) << key << " in " << test.json;
    }
}

TEST(LayoutResolution, PercentagesAreWrittenAsProductsOfTheParentsText)
{
    // A reference that never resolves keeps each formula as the percentage step left it.
    OSTLayoutManager manager = layoutManager(R"({"shapes": {
        "stuck": {"x": "{stuck.x}"},
        "a": {"x": "50% + {stuck.x}", "y": "50% + {stuck.x}",
              "width": "33.2% + {stuck.x}", "height": "100% + {stuck.x}"},
        "b": {"x": "150% + {stuck.x}", "y": "% + {stuck.x}",
              "width": "0% + {stuck.x}", "height": "100.0% + {stuck.x}"}}})");
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(value(manager, "a", "x"), u"(0.50 * 375.00) + {stuck.x}"_s);
    EXPECT_EQ(value(manager, "a", "y"), u"(0.50 * 667.00) + {stuck.x}"_s) << "y is of the height";
    EXPECT_EQ(value(manager, "a", "width"), u"(0.34 * 375.00) + {stuck.x}"_s)
        << "rounded up to a whole percent";
    EXPECT_EQ(value(manager, "a", "height"), u"667.00 + {stuck.x}"_s)
        << "100% copies the parent's text";
    EXPECT_EQ(value(manager, "b", "x"), u"(1.50 * 375.00) + {stuck.x}"_s)
        << "one greedy percentage";
    EXPECT_EQ(value(manager, "b", "y"), u"(0.00 * 667.00) + {stuck.x}"_s) << "a bare % matches too";
    EXPECT_EQ(value(manager, "b", "width"), u" + {stuck.x}"_s) << "0% becomes nothing";
    EXPECT_EQ(value(manager, "b", "height"), u"(1.00 * 667.00) + {stuck.x}"_s);
}

TEST(LayoutResolution, FramesOfUnknownKeysAreZero)
{
    OSTLayoutManager manager = layoutManager(R"({"shapes": {"a": {"x": "5"}}})");
    EXPECT_EQ(manager.frameForKey(u"a"_s), QRectF()) << "not resolved yet";
    ASSERT_TRUE(manager.resolveLayout());
    EXPECT_EQ(manager.frameForKey(u"nothing"_s), QRectF());
    EXPECT_TRUE(manager.resolveLayout()) << "resolving again changes nothing";
    EXPECT_EQ(manager.frameForKey(u"a"_s), QRectF(5, 0, 375, 667));
}

// --- Resolution that full passes would never end ----------------------------------------------

TEST(LayoutResolutionFailure, CyclesSelfReferencesAndNegativeResultsEndWithFalse)
{
    const char *cases[] = {
        R"({"shapes": {"a": {"x": "{b.x}"}, "b": {"x": "{a.x}"}}})", R"({"shapes": {"a": {"y": "{a.y} + 1"}}})",
        R"({"shapes": {"a": {"x": "x"}}})", R"({"shapes": {"a": {"x": "-10"}}})",
        R"({"shapes": {"a": {"x": "10 - 20"}}})", R"({"shapes": {"a": {"x": "{b.colour}"}, "b": {}}})",
        R"({"shapes": {"a": {"width": "0% + 5"}}})", R"({"shapes": {"a": {"x": "5 / 0"}}})",
        R"({"shapes": {"a": {"x": "1e3"}}})", R"({"shapes": {"a": {}}, "groups": {"g": {"elements": ["g"]}}})",
    };
    for (const char *json : cases) {
        OSTLayoutManager manager = layoutManager(json);
        EXPECT_FALSE(manager.resolveLayout()) << json;
    }
}

TEST(LayoutResolutionFailure, ElementsThatCanResolveStillDo)
{
    OSTLayoutManager manager = layoutManager(R"({"shapes": {
        "a": {"x": "{b.x}"}, "b": {"x": "{a.x}"}, "c": {"x": "{d.width} / 2"}, "d": {"width": "30"}},
        "groups": {"g": {"x": "-5", "elements": ["e"]}}, "labels": {"e": {"x": "7"}}})");
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(manager.frameForKey(u"c"_s).x(), 15.0);
    EXPECT_EQ(manager.frameForKey(u"a"_s), QRectF());
    EXPECT_EQ(value(manager, "e", "x"), u"7"_s) << "numbers from the start need no resolution";
    EXPECT_EQ(value(manager, "e", "width"), u"100%"_s) << "its parent never resolves";
}

TEST(LayoutResolutionFailure, LogsOneDebugLineNamingAnUnresolvedElement)
{
    OSTLogging::setLoggingLevel(OSTLoggingLevelDebug);
    OSTLayoutManager manager = layoutManager(R"({"shapes": {
        "fine": {}, "loop": {"x": "{loop.x}"}},
        "groups": {"box": {"elements": ["inner"], "x": "-1"}}, "labels": {"inner": {"width": "50%"}}})");
    const QString output = captureStandardError([&] { EXPECT_FALSE(manager.resolveLayout()); });
    EXPECT_EQ(output.count(u'\n'), 1) << output.toStdString();
    EXPECT_TRUE(output.startsWith(u"Ostrel Debug: Layout not resolved: element \"box\""_s))
        << output.toStdString();
    EXPECT_TRUE(output.contains(u"\"x\" is \"-1\""_s)) << output.toStdString();

    OSTLayoutManager ownParent =
        layoutManager(R"({"shapes": {"a": {}}, "groups": {"g": {"elements": ["g"]}}})");
    const QString waiting =
        captureStandardError([&] { EXPECT_FALSE(ownParent.resolveLayout()); });
    EXPECT_TRUE(waiting.startsWith(u"Ostrel Debug: Layout not resolved: element \"g\""_s))
        << waiting.toStdString();
    EXPECT_TRUE(waiting.contains(u"(its parent stayed unresolved)"_s)) << waiting.toStdString();

    OSTLayoutManager fine = layoutManager(R"({"shapes": {"fine": {}}})");
    EXPECT_TRUE(captureStandardError([&] { EXPECT_TRUE(fine.resolveLayout()); }).isEmpty());
}
