// Reading text shadows: [colour, blur radius, x offset, y offset].

#include "screen/OSTShadow.h"

#include "support/OSTTestSupport.h"

#include <gtest/gtest.h>

using namespace ostrel;
using namespace ostrel::test;
using namespace Qt::StringLiterals;

TEST(Shadow, TextShadowReadsColourRadiusAndOffset)
{
    const auto shadow = ost_shadowWithProperties(jsonObject(R"({"shadow": ["#FF000080", "3.5", "-1", 2]})"));
    ASSERT_TRUE(shadow);
    EXPECT_EQ(shadow->color, QColor(255, 0, 0, 0x80));
    EXPECT_EQ(shadow->blurRadius, 3.5);
    EXPECT_EQ(shadow->offset, QPointF(-1, 2)) << "numbers and numeric strings alike";

    const auto longer = ost_shadowWithProperties(jsonObject(R"({"shadow": ["#000", "1", "0", "0", "extra"]})"));
    ASSERT_TRUE(longer) << "entries after the fourth are ignored";
    EXPECT_EQ(longer->color, QColor(Qt::black));

    // Absent when incomplete, invisible or unblurred.
    for (const char *properties :
         {"{}", R"({"shadow": ["#000000", "2", "1"]})", R"({"shadow": []})", R"({"shadow": "#000000 2 1 1"})",
          R"({"shadow": [0, "2", "1", "1"]})", R"({"shadow": ["#000000", "0", "1", "1"]})",
          R"({"shadow": ["#000000", 0, "1", "1"]})", R"({"shadow": ["#00000000", "2", "1", "1"]})",
          R"({"shadow": ["#12345", "2", "1", "1"]})"})
        EXPECT_FALSE(ost_shadowWithProperties(jsonObject(properties))) << properties;
}

TEST(Shadow, UnreadableNumbersCountAsZeroAndAreLogged)
{
    std::optional<OSTShadow> shadow;
    const QString log = captureStandardError([&] {
        shadow = ost_shadowFromArray(QVariantList{u"#000"_s, u"4"_s, u"wide"_s, QVariantMap()});
    });
    ASSERT_TRUE(shadow);
    EXPECT_EQ(shadow->blurRadius, 4);
    EXPECT_EQ(shadow->offset, QPointF(0, 0));
    EXPECT_TRUE(log.contains(u"wide"_s)) << log.toStdString();

    EXPECT_FALSE(ost_shadowWithProperties(jsonObject(R"({"shadow": ["#000", "blurry", "1", "1"]})")))
        << "an unreadable radius reads as 0: no shadow";
}
