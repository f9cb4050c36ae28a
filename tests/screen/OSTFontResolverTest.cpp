// The font rule of texts: sizes in pixels, PostScript names read as family and style, and the
// system font for names the machine does not have.

#include "screen/OSTFontResolver.h"

#include "support/OSTTestSupport.h"

#include <QDir>
#include <QFontDatabase>
#include <QFontInfo>

#include <gtest/gtest.h>

using namespace ostrel;
using ostrel::test::jsonObject;
using namespace Qt::StringLiterals;

TEST(FontResolver, FontsAreSetInPixelsAndUnknownNamesFallBackToTheSystemFont)
{
    const auto sized = OSTFontResolver::fontWithProperties(jsonObject(R"({"size": "18", "font": "NoSuchFont-Bold"})"));
    ASSERT_TRUE(sized);
    EXPECT_EQ(sized->pixelSize(), 18);
    EXPECT_EQ(sized->family(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());

    // A PostScript name reads as family plus style, and the face drawn is that style, even
    // when the family comes from two foundries (its two faces carry different vendors, as a
    // family installed twice does).
    const QDir fonts(QStringLiteral(OSTREL_TEST_FONTS_PATH));
    for (const QString &face : {u"OstrelTestSerif-Regular.ttf"_s, u"OstrelTestSerif-BoldItalic.ttf"_s})
        ASSERT_GE(QFontDatabase::addApplicationFont(fonts.filePath(face)), 0) << face.toStdString();
    ASSERT_EQ(QFontDatabase::families().filter(u"Ostrel Test Serif ["_s).size(), 2) << "listed once per foundry";
    const QFont styled = OSTFontResolver::fontNamed(u"OstrelTestSerif-BoldItalic"_s, 12);
    EXPECT_EQ(styled.family(), u"Ostrel Test Serif"_s);
    const QFontInfo drawn(styled);
    EXPECT_EQ(drawn.styleName(), u"Bold Italic"_s);
    EXPECT_TRUE(drawn.italic());
    EXPECT_EQ(QFontInfo(OSTFontResolver::fontNamed(u"OstrelTestSerif-Regular"_s, 12)).styleName(), u"Regular"_s);
    const QFont byFamily = OSTFontResolver::fontNamed(u"Ostrel Test Serif"_s, 15);
    EXPECT_EQ(byFamily.family(), u"Ostrel Test Serif"_s);
    EXPECT_EQ(byFamily.pixelSize(), 15) << "a family name keeps the size asked for";

    for (const char *json : {R"({"font": "Avenir"})", R"({"size": "0"})", R"({"size": "-4"})", R"({"size": 18})"})
        EXPECT_FALSE(OSTFontResolver::fontWithProperties(jsonObject(json))) << json;
    EXPECT_EQ(OSTFontResolver::fontWithProperties(jsonObject(R"({"size": "1e9"})"))->pixelSize(),
              OSTFontResolver::maximumPixelSize);
}
