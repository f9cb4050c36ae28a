#include "OSTLayoutTestSupport.h"

#include "layout/OSTLayoutCompiledFormulas.h"
#include "layout/OSTLayoutExpression.h"
#include "layout/OSTLayoutKeyIndex.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

namespace {

using Formulas = OSTLayoutCompiledFormulas;

struct Compiled {
    QStringList keys{u"a"_s, u"b"_s};
    OSTLayoutKeyIndex index{keys};
    Formulas formulas;

    explicit Compiled(const QString &statusBar = u"20.00"_s) : formulas(index, statusBar) {}
};

} // namespace

TEST(LayoutCompiledFormulas, CompilesOnlyWhatTextSubstitutionCannotReshape)
{
    const struct {
        const char16_t *formula;
        bool compiles;
    } cases[] = {
        {u"(100% - width) / 2", true}, {u"{a.y} + {a.height} + 8", true}, {u"{missing.x} - -(statusBar * 2)", true},
        {u"{a.colour}", true}, {u"150.5%", true}, {u"33.2% * .5 + 5.", true}, {u"%", true},
        {u"0% + 5", false},      // the percentage becomes nothing
        {u"1234.5%", false},     // the pattern takes only "34.5%"
        {u"250.5%", false},      // nor "250.5%" whole
        {u"{a.{b.x}.y}", false}, // nested braces
        {u"{a.x}{a.x}", false},  // adjacent operands join into one number
        {u"{a.x}.5", false}, {u"x2", false}, {u"widthx", false}, {u"colour", false}, {u"{a}", false},
        {u"{a.x", false}, {u"1e2", false}, {u"5.5.5", false}, {u"+5", false}, {u"5 %", false}, {u"", false},
    };
    for (const auto &entry : cases) {
        Compiled compiled;
        const QString formula = QString::fromUtf16(entry.formula);
        EXPECT_EQ(compiled.formulas.compile(0, OSTLayoutElement::X, formula), entry.compiles)
            << formula.toStdString();
        EXPECT_EQ(compiled.formulas.formula(0, OSTLayoutElement::X) != nullptr, entry.compiles)
            << formula.toStdString();
    }

    // A status bar that is not a number, brackets deeper than the arithmetic allows once each
    // percentage adds one, and more inputs than resolution tracks all take the string path.
    Compiled negativeStatusBar(u"-20.00"_s);
    EXPECT_FALSE(negativeStatusBar.formulas.compile(0, OSTLayoutElement::Y, u"statusBar"_s));
    Compiled deep;
    EXPECT_FALSE(deep.formulas.compile(0, OSTLayoutElement::Y,
                                       QString(150, u'(') + u"50%"_s + QString(150, u')')));
    Compiled wide;
    QString sum = u"x"_s;
    for (int input = 1; input <= Formulas::maximumInputs; ++input)
        sum += u" + x"_s;
    EXPECT_FALSE(wide.formulas.compile(0, OSTLayoutElement::Y, sum));
}

TEST(LayoutCompiledFormulas, EvaluatesAsTheArithmeticReadsTheSubstitutedText)
{
    // Each formula with its inputs, and the same formula with their texts in place.
    const struct {
        const char16_t *formula;
        std::vector<double> inputs;
        const char16_t *substituted;
    } cases[] = {
        {u"10 - 2 - 3", {}, u"10 - 2 - 3"},
        {u"8 / 2 / 2 * 3", {}, u"8 / 2 / 2 * 3"},
        {u"-{a.x} * -(2 + {b.y})", {12.5, 0.1}, u"-12.5 * -(2 + 0.1)"},
        {u"--{a.x} - - -width / 3", {7, 0.3}, u"--7 - - -0.3 / 3"},
        {u"(((1 + x)) / (y - 0.7))", {0.1, 0.7}, u"(((1 + 0.1)) / (0.7 - 0.7))"},
        {u".1 + .2 + statusBar", {20}, u".1 + .2 + 20.00"},
    };
    for (const auto &entry : cases) {
        Compiled compiled;
        const QString formula = QString::fromUtf16(entry.formula);
        ASSERT_TRUE(compiled.formulas.compile(1, OSTLayoutElement::Height, formula))
            << formula.toStdString();
        const Formulas::Formula &program = *compiled.formulas.formula(1, OSTLayoutElement::Height);
        ASSERT_EQ(size_t(program.inputCount), entry.inputs.size());
        const double value = compiled.formulas.evaluate(program, entry.inputs.data());
        const std::optional<double> expected =
            OSTLayoutExpression::evaluate(QString::fromUtf16(entry.substituted));
        ASSERT_TRUE(expected);
        if (std::isnan(*expected))
            EXPECT_TRUE(std::isnan(value)) << formula.toStdString();
        else
            EXPECT_EQ(value, *expected) << formula.toStdString();
    }
}

TEST(LayoutCompiledFormulas, UnresolvedFormulasKeepTheTextTheStepsLeave)
{
    // "a" and "b" refer to each other; "c" waits on them, with its percentage, the resolved
    // reference and, where every reference was available, its names replaced.
    OSTLayoutManager manager = layoutManager(R"json({"shapes": {
        "a": {"x": "{b.x} + 1"}, "b": {"x": "{a.x} * 2", "y": "5"},
        "c": {"x": "{a.x} + 50% + width", "y": "{b.y} + height + statusBar + 10%",
              "width": "width - 1", "height": "10 - 20"},
        "d": {"x": "1 / (3 - 3)", "y": "-5", "width": "{b.y}", "height": "100%"}}})json");
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"x"_s), u"{a.x} + (0.50 * 375.00) + width"_s);
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"y"_s), u"5 + height + 20.00 + (0.10 * 667.00)"_s);
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"width"_s), u"width - 1"_s);
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"height"_s), u"-10"_s);
    EXPECT_EQ(layoutValue(manager, u"d"_s, u"x"_s), u"1 / (3 - 3)"_s);
    EXPECT_EQ(layoutValue(manager, u"d"_s, u"y"_s), u"-5"_s);
    EXPECT_EQ(layoutValue(manager, u"d"_s, u"width"_s), u"5"_s);
    EXPECT_EQ(layoutValue(manager, u"d"_s, u"height"_s), u"667.00"_s);

    // Resolving again, now on the string path, finds nothing left to change.
    EXPECT_FALSE(manager.resolveLayout());
    EXPECT_EQ(layoutValue(manager, u"c"_s, u"y"_s), u"5 + height + 20.00 + (0.10 * 667.00)"_s);
}

TEST(LayoutCompiledFormulas, AnUpdatedElementResolvesItsNewFormulas)
{
    OSTLayoutManager manager = layoutManager(R"({"labels": {
        "message": {"x": "{missing.x}", "width": "50%"}, "title": {"height": "44"}}})");
    manager.updateLayout(frameJson(R"({"y": "{title.height} * 2", "width": "25% - 0.5"})"),
                         u"message"_s);
    ASSERT_TRUE(manager.resolveLayout());
    EXPECT_EQ(manager.frameForKey(u"message"_s), QRectF(0, 88, 93, 667));
}
