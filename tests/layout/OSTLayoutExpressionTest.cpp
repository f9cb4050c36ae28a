// The arithmetic evaluator of layout formulas and the number texts of the layout engine.

#include "layout/OSTLayoutExpression.h"
#include "layout/OSTLayoutNumbers.h"

#include <QString>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>
#include <utility>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

std::optional<double> evaluate(const char *text)
{
    return OSTLayoutExpression::evaluate(QString::fromUtf8(text));
}

} // namespace

TEST(LayoutExpression, EvaluatesArithmeticInDoublePrecision)
{
    const std::pair<const char *, double> cases[] = {
        {"(0.50 * 375.00)", 187.5}, {"(375.00 - 187) / 2", 94.0}, {"  7\t*\n6 ", 42.0}, {"2 + 3 * 4", 14.0},
        {"10 - 2 - 3", 5.0},        {"8 / 2 / 2", 2.0},           {"(2 + 3) * 4", 20.0},  {"0.1 + 0.2", 0.1 + 0.2},
        {"0.29 * 100", 0.29 * 100}, {".5 + 5.", 5.5},             {"007.50", 7.5},        {"-5", -5.0},
        {"- -5", 5.0},              {"--5", 5.0},                 {"2 - -3", 5.0},        {"2 * -3", -6.0},
        {"-(1 + 2) * 2", -6.0},     {"-2 * -2", 4.0},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(evaluate(text), expected) << text;
}

TEST(LayoutExpression, MalformedTextsHaveNoValue)
{
    for (const char *text :
         {"",      " ",   "(",     ")",     "()",     "(1",  "1)",     "1 +",
          "* 2",   "1 2", "1..2",  ".",     "+5",     "1e3", "0x10",   "width * 2",
          "{a.x}", "1,5", "2 ^ 3", "5 % 2", "( + 5)", "１",  "1 + ()", "abs(1)"})
        EXPECT_FALSE(evaluate(text)) << text;
}

TEST(LayoutExpression, DeepNestingIsMalformedAndExtremeValuesAreIeee)
{
    const int limit = OSTLayoutExpression::maximumNestingDepth;
    const QString fits = QString(limit, u'(') + u'1' + QString(limit, u')');
    EXPECT_EQ(OSTLayoutExpression::evaluate(fits), 1.0);
    const QString deep = QString(limit + 1, u'(') + u'1' + QString(limit + 1, u')');
    EXPECT_FALSE(OSTLayoutExpression::evaluate(deep));
    const QString hostile = QString(1000000, u'(') + u'1';
    EXPECT_FALSE(OSTLayoutExpression::evaluate(hostile));
    const QString negations = QString(1000000, u'-') + u'1';
    EXPECT_FALSE(OSTLayoutExpression::evaluate(negations));

    // Division by zero and huge or tiny numbers give the IEEE value.
    EXPECT_EQ(evaluate("1 / 0"), std::numeric_limits<double>::infinity());
    const auto nan = evaluate("0 / 0");
    ASSERT_TRUE(nan);
    EXPECT_TRUE(std::isnan(*nan));
    EXPECT_EQ(OSTLayoutExpression::evaluate(QString(400, u'9')), std::numeric_limits<double>::infinity());
    EXPECT_EQ(OSTLayoutExpression::evaluate(u"0."_s + QString(400, u'0') + u'1'), 0.0);
    EXPECT_EQ(evaluate("9007199254740993"), 9007199254740992.0) << "correctly rounded";
}

TEST(LayoutNumbers, TwoDecimalsIsPrintfInTheCLocale)
{
    // The process locale must not leak into layout strings.
    const char *previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = previous ? previous : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    // 0.125 is an exact tie and goes to even; 1.005 is 1.00499999999999989... in binary.
    const std::pair<double, QString> cases[] = {
        {375, u"375.00"_s},  {0.34, u"0.34"_s},   {1.5, u"1.50"_s},
        {0.125, u"0.12"_s},  {0.375, u"0.38"_s},  {1.005, u"1.00"_s},
        {-20, u"-20.00"_s}, {1e20, u"100000000000000000000.00"_s}, {std::numeric_limits<double>::infinity(), u"inf"_s},
    };
    for (const auto &[value, expected] : cases)
        EXPECT_EQ(OSTLayoutNumbers::twoDecimals(value), expected) << value;
    std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(LayoutNumbers, IntegersAndReadings)
{
    const auto integer = [](qint64 value) {
        char16_t digits[24];
        const qsizetype length = OSTLayoutNumbers::writeInteger(value, digits);
        return QString(reinterpret_cast<const QChar *>(digits), length);
    };
    EXPECT_EQ(integer(187), u"187"_s);
    EXPECT_EQ(integer(-10), u"-10"_s);
    EXPECT_EQ(integer(0), u"0"_s);
    EXPECT_EQ(integer(std::numeric_limits<qint64>::min()), u"-9223372036854775808"_s);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u"33.5"), 33.5);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u""), 0.0);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u"."), 0.0);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u"5."), 5.0);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u".25"), 0.25);
    EXPECT_EQ(OSTLayoutNumbers::decimalValue(u"12abc"), 12.0);

    for (const char *text : {"0", "187", "-10", "9223372036854775807", "-9223372036854775808"})
        EXPECT_TRUE(OSTLayoutNumbers::isCanonicalInteger(QString::fromUtf8(text))) << text;
    for (const char *text : {"", "-", "-0", "007", "+5", "1.0", " 5", "5 ", "9223372036854775808",
                             "-9223372036854775809", "99999999999999999999"})
        EXPECT_FALSE(OSTLayoutNumbers::isCanonicalInteger(QString::fromUtf8(text))) << text;
}
