#include "screen/OSTShadow.h"

#include "render/OSTAlphaBlur.h"
#include "render/OSTLabel.h"
#include "render/OSTPaintedLayerCache.h"

#include "support/OSTTestSupport.h"

#include "OSTPixelTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

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

namespace ostrel {
namespace {

TEST(Shadow, AHugeBlurIsBoundedAndItsLayerKeptForRepaints)
{
    // Radii far beyond any screen neither overflow nor grow without end.
    const int widest = OSTAlphaBlur::reach(OSTAlphaBlur::maximumSigma);
    for (const qreal sigma : {1e4, 1e5, 1e9, std::numeric_limits<qreal>::infinity()}) {
        EXPECT_GT(OSTAlphaBlur::reach(sigma), 0) << sigma;
        EXPECT_LE(OSTAlphaBlur::reach(sigma), widest) << sigma;
    }
    EXPECT_EQ(OSTAlphaBlur::reach(std::numeric_limits<qreal>::quiet_NaN()), 0);

    OSTPaintedLayerCache::clear();
    OSTLabel label(QRect(0, 0, 200, 40), test::jsonObject(R"({"text": "Shadowed", "size": "17",
        "shadow": ["#000000", "1000", "0", "0"]})"));
    const QImage first = test::capture(label, 1);
    const qsizetype kept = OSTPaintedLayerCache::count();
    EXPECT_GE(kept, 1) << "the blurred shadow is kept";
    EXPECT_LT(OSTPaintedLayerCache::bytes(), 4 * 1024 * 1024) << "made at a lower resolution";
    const QImage again = test::capture(label, 1);
    EXPECT_EQ(OSTPaintedLayerCache::count(), kept) << "a repaint finds it";
    EXPECT_EQ(first, again);
}

} // namespace
} // namespace ostrel
