// Text fitted to its box and painted with its shadow, as a label shows it.

#include "paint/OSTAlphaBlur.h"
#include "paint/OSTPaintedLayerCache.h"
#include "paint/OSTTextPainter.h"
#include "screen/OSTLabelDescription.h"

#include "widgets/OSTPixelTestSupport.h"

#include <QPainter>

#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

OSTTextPainter textPainter(const QVariantMap &properties)
{
    const OSTLabelDescription description(u"label"_s, properties);
    OSTTextPainter painter;
    painter.setAttributes(OSTTextAttributes(description.textLook()));
    painter.setMinimumScaleFactor(description.minimumScaleFactor());
    return painter;
}

QImage painted(OSTTextPainter &textPainter, const QString &text, const QSize &size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    textPainter.paint(painter, text, QRectF(QPointF(), size), QFont());
    return image;
}

TEST(TextPainter, ShrinksToFitNoFurtherThanItsMinimumScaleAndSurvivesHugeTexts)
{
    const QString longText = u"word "_s.repeated(60);
    OSTTextPainter shrinking = textPainter({{u"size"_s, u"20"_s}, {u"minimumScaleFactor"_s, u"0.5"_s}});
    const qreal scale = shrinking.fittedScale(longText, {200, 60}, QFont());
    EXPECT_LT(scale, 1);
    EXPECT_GE(scale, 0.5);
    EXPECT_EQ(shrinking.fittedScale(u"word"_s, {200, 60}, QFont()), 1) << "a short text keeps its size";
    EXPECT_EQ(shrinking.fittedScale(longText, {200, 2000}, QFont()), 1) << "a box tall enough keeps its size";

    OSTTextPainter fixed = textPainter({{u"size"_s, u"20"_s}});
    EXPECT_EQ(fixed.fittedScale(longText, {200, 60}, QFont()), 1) << "without a factor the font keeps its size";

    OSTTextPainter huge = textPainter({{u"size"_s, u"14"_s}, {u"minimumScaleFactor"_s, u"0.1"_s}});
    EXPECT_EQ(huge.fittedScale(u"x"_s.repeated(100'000), {375, 667}, QFont()), 1) << "too long to shrink";
    EXPECT_FALSE(painted(huge, u"x"_s.repeated(100'000), {375, 667}).isNull());
}

TEST(TextPainter, AHugeShadowBlurIsBoundedAndItsLayerKeptForRepaints)
{
    // Radii far beyond any screen neither overflow nor grow without end.
    const int widest = OSTAlphaBlur::reach(OSTAlphaBlur::maximumSigma);
    for (const qreal sigma : {1e4, 1e5, 1e9, std::numeric_limits<qreal>::infinity()}) {
        EXPECT_GT(OSTAlphaBlur::reach(sigma), 0) << sigma;
        EXPECT_LE(OSTAlphaBlur::reach(sigma), widest) << sigma;
    }
    EXPECT_EQ(OSTAlphaBlur::reach(std::numeric_limits<qreal>::quiet_NaN()), 0);

    OSTPaintedLayerCache::clear();
    OSTTextPainter shadowed = textPainter(test::jsonObject(R"({"size": "17", "shadow": ["#000000", "1000", "0", "0"]})"));
    const QImage first = painted(shadowed, u"Shadowed"_s, {200, 40});
    const qsizetype kept = OSTPaintedLayerCache::count();
    EXPECT_GE(kept, 1) << "the blurred shadow is kept";
    EXPECT_LT(OSTPaintedLayerCache::bytes(), 4 * 1024 * 1024) << "made at a lower resolution";
    const QImage again = painted(shadowed, u"Shadowed"_s, {200, 40});
    EXPECT_EQ(OSTPaintedLayerCache::count(), kept) << "a repaint finds it";
    EXPECT_EQ(first, again);
}

} // namespace
} // namespace ostrel
