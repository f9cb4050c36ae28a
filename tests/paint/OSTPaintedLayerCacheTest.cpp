// Layers painted once and drawn again as copies: what is kept, when it is painted again, and
// what is too large to keep.

#include "paint/OSTImagePainter.h"
#include "paint/OSTPaintedLayerCache.h"

#include "widgets/OSTPixelTestSupport.h"

#include <QPainter>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::colorNear;
using test::imageOfColor;
using test::pixelAt;

TEST(PaintedLayerCache, PaintsOncePerKeySizeAndRatioAndLetsTheOldestGoBeyondItsBudget)
{
    OSTPaintedLayerCache::clear();
    int paintings = 0;
    const auto paintRed = [&paintings](QPainter &painter) {
        ++paintings;
        painter.fillRect(QRectF(0, 0, 5, 5), Qt::red);
    };

    const QImage first = OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 2, paintRed);
    ASSERT_EQ(first.size(), QSize(20, 20)) << "device pixels";
    EXPECT_EQ(first.devicePixelRatio(), 2);
    EXPECT_EQ(first.format(), QImage::Format_ARGB32_Premultiplied);
    EXPECT_TRUE(colorNear(pixelAt(first, {2, 2}), QColor(Qt::red)));
    EXPECT_EQ(pixelAt(first, {7, 7}).alpha(), 0) << "unpainted parts stay clear";
    EXPECT_EQ(first.cacheKey(), OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 2, paintRed).cacheKey());
    EXPECT_EQ(paintings, 1);

    OSTPaintedLayerCache::layer(u"red"_s, {10, 10}, 1, paintRed);
    OSTPaintedLayerCache::layer(u"red"_s, {11, 10}, 2, paintRed);
    OSTPaintedLayerCache::layer(u"other"_s, {10, 10}, 2, paintRed);
    EXPECT_EQ(paintings, 4) << "another ratio, size or key is another layer";
    EXPECT_EQ(OSTPaintedLayerCache::count(), 4);

    EXPECT_TRUE(OSTPaintedLayerCache::layer(u"empty"_s, {0, 10}, 2, paintRed).isNull());
    EXPECT_TRUE(OSTPaintedLayerCache::layer(u"no ratio"_s, {10, 10}, 0, paintRed).isNull());
    EXPECT_EQ(paintings, 4) << "nothing is painted for an empty layer";

    // Full screens at ratio 3 (about 9 MB each): only the most recent few fit the budget.
    for (int index = 0; index < 6; ++index)
        OSTPaintedLayerCache::layer(u"screen %1"_s.arg(index), {375, 667}, 3, paintRed);
    EXPECT_LE(OSTPaintedLayerCache::bytes(), 24 * 1024 * 1024);
    const int before = paintings;
    OSTPaintedLayerCache::layer(u"screen 5"_s, {375, 667}, 3, paintRed);
    EXPECT_EQ(paintings, before) << "the most recent layer is kept";
    OSTPaintedLayerCache::layer(u"screen 0"_s, {375, 667}, 3, paintRed);
    EXPECT_EQ(paintings, before + 1) << "the oldest went first";
}

TEST(PaintedLayerCache, APictureLargerThanTheWholeBudgetIsPaintedStraightOntoTheDevice)
{
    OSTPaintedLayerCache::clear();
    OSTImagePainter imagePainter;
    imagePainter.setContentMode(UIViewContentModeScaleToFill);
    imagePainter.setImage(imageOfColor(Qt::red));
    const auto paintedAt = [&imagePainter](const QSize &size) {
        QImage image(size, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        imagePainter.paint(painter, size);
        return image;
    };
    EXPECT_TRUE(colorNear(pixelAt(paintedAt({3000, 2200}), {2990, 2190}), QColor(Qt::red))) << "26 MB at ratio 1";
    EXPECT_EQ(OSTPaintedLayerCache::count(), 0) << "nothing kept";

    EXPECT_TRUE(colorNear(pixelAt(paintedAt({300, 220}), {290, 210}), QColor(Qt::red)));
    EXPECT_EQ(OSTPaintedLayerCache::count(), 1);
}

} // namespace
} // namespace ostrel
