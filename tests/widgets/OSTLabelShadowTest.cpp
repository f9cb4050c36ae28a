// A text shadow far beyond any screen, as a label paints it.

#include "paint/OSTAlphaBlur.h"
#include "widgets/OSTLabel.h"
#include "paint/OSTPaintedLayerCache.h"

#include "support/OSTTestSupport.h"

#include "OSTPixelTestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

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
    OSTLabel label(QRect(0, 0, 200, 40), OSTLabelDescription(u"label"_s, test::jsonObject(R"({"text": "Shadowed", "size": "17",
        "shadow": ["#000000", "1000", "0", "0"]})")));
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
