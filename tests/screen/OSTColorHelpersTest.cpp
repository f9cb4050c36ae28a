#include "screen/OSTColorHelpers.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

struct HexCase {
    QString text;
    QColor expected;
};

} // namespace

TEST(ColorHelpers, HexadecimalStringsGiveTheirColourWithAlphaLastOneDigitDoubled)
{
    const QColor clear(Qt::transparent);
    const std::vector<HexCase> cases{
        {u"#FFF"_s, QColor(255, 255, 255)}, {u"FFF"_s, QColor(255, 255, 255)}, {u"#FFFFFF"_s, QColor(255, 255, 255)},
        {u"#fff"_s, QColor(255, 255, 255)}, {u"#FFF0"_s, QColor(255, 255, 255, 0)},
        {u"#80FF0000"_s, QColor(0x80, 0xFF, 0x00, 0x00)}, {u"#12345678"_s, QColor(0x12, 0x34, 0x56, 0x78)},
        {u"#1A2b3C"_s, QColor(0x1A, 0x2B, 0x3C)}, {u"#f80"_s, QColor(0xFF, 0x88, 0x00)},
        {u"#f808"_s, QColor(0xFF, 0x88, 0x00, 0x88)}, {u"##F#F#F"_s, QColor(255, 255, 255)},
        {u"#12345"_s, clear}, {u"#1234567"_s, clear}, {u""_s, clear}, {u"#"_s, clear}, {u"GGGGGG"_s, clear},
        {u"#GGG"_s, clear}, {u"#0G0"_s, clear}, {u"#FF FF FF"_s, clear},
        {u"#5G5G5G"_s, QColor(5, 5, 5)}, // a component reads its leading digits only
        {u"#7Z0000"_s, QColor(7, 0, 0)}, {u"#-1-1-1"_s, clear},
        {u"#٣٣٣"_s, clear},              // digits of other scripts are not hexadecimal
    };
    for (const HexCase &hexCase : cases) {
        const QColor color = ost_colorWithHexString(hexCase.text);
        EXPECT_EQ(color.rgba(), hexCase.expected.rgba())
            << '"' << hexCase.text.toStdString() << "\" gave " << color.name(QColor::HexArgb).toStdString();
    }
}

TEST(ColorHelpers, ClearMeansFullyTransparent)
{
    EXPECT_TRUE(ost_isClear(QColor(Qt::transparent)));
    EXPECT_TRUE(ost_isClear(QColor(255, 255, 255, 0)));
    EXPECT_FALSE(ost_isClear(QColor(0, 0, 0, 1)));
    EXPECT_FALSE(ost_isClear(QColor(Qt::black)));
    EXPECT_FALSE(ost_isClear(QColor())) << "an invalid colour has no alpha to read";
}
