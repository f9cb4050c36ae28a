// An image painted into a box: where a content mode places it, and cap insets that stretch only
// the middle, as Qt's border pixmap drawing does it.

#include "paint/OSTImagePainter.h"
#include "paint/OSTPaintedLayerCache.h"

#include "widgets/OSTPixelTestSupport.h"

#include <QPainter>
#include <QPixmap>
#include <qdrawutil.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

using test::colorNear;
using test::pixelAt;

QImage canvas(const QSize &size, qreal ratio)
{
    QImage image((QSizeF(size) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    return image;
}

QImage painted(const OSTImagePainter &imagePainter, const QSize &size, qreal ratio)
{
    QImage image = canvas(size, ratio);
    QPainter painter(&image);
    imagePainter.paint(painter, size);
    return image;
}

// The same nine-patch drawn by Qt's widget helper, through a kept layer as the painter does.
QImage drawnByQt(const QImage &source, const QMargins &insets, const QSize &size, qreal ratio)
{
    QImage image = canvas(size, ratio);
    QPainter painter(&image);
    const QString key = u"reference %1 %2 %3 %4 %5"_s.arg(source.cacheKey())
                            .arg(insets.left()).arg(insets.top()).arg(insets.right()).arg(insets.bottom());
    OSTPaintedLayerCache::draw(painter, key, size, [&](QPainter &layerPainter) {
        layerPainter.setRenderHint(QPainter::SmoothPixmapTransform);
        layerPainter.setClipRect(QRect(QPoint(), size));
        qDrawBorderPixmap(&layerPainter, QRect(QPoint(), size), insets, QPixmap::fromImage(source),
                          QRect(QPoint(), source.size()), insets);
    });
    return image;
}

// A 20 × 20 image: a red 5-point frame around a green middle, with a blue corner pixel so that
// a misplaced piece shows.
QImage framedImage(qreal ratio)
{
    QImage framed = test::imageOfColor(Qt::red, (QSizeF(20, 20) * ratio).toSize());
    for (int y = int(5 * ratio); y < int(15 * ratio); ++y)
        for (int x = int(5 * ratio); x < int(15 * ratio); ++x)
            framed.setPixelColor(x, y, Qt::green);
    framed.setPixelColor(0, 0, Qt::blue);
    framed.setDevicePixelRatio(ratio);
    return framed;
}

TEST(ImagePainter, CapInsetsStretchOnlyTheMiddleExactlyAsQtDrawsABorderPixmap)
{
    OSTImagePainter imagePainter;
    imagePainter.setImage(framedImage(1));
    imagePainter.setCapInsets(QMargins(5, 5, 5, 5));
    for (const qreal ratio : {1.0, 2.0}) {
        const QImage image = painted(imagePainter, {100, 60}, ratio);
        EXPECT_TRUE(colorNear(pixelAt(image, {2, 30}), QColor(Qt::red))) << "the edge keeps its width";
        EXPECT_TRUE(colorNear(pixelAt(image, {8, 30}), QColor(Qt::green))) << "only the middle stretches";
        EXPECT_TRUE(colorNear(pixelAt(image, {97, 30}), QColor(Qt::red)));
    }

    // Uneven, zero and oversized insets, boxes smaller than the corners, and sharper images.
    // Each case: the insets asked for and what the image fits of them (12 + 12 > 20).
    const QList<std::pair<QMargins, QMargins>> insetsCases{{{5, 5, 5, 5}, {5, 5, 5, 5}},
                                                           {{3, 0, 7, 2}, {3, 0, 7, 2}},
                                                           {{0, 0, 0, 0}, {0, 0, 0, 0}},
                                                           {{12, 12, 12, 12}, {10, 10, 10, 10}}};
    const QList<QSize> boxes{{100, 60}, {21, 37}, {6, 4}};
    for (const qreal imageRatio : {1.0, 2.0}) {
        const QImage source = framedImage(imageRatio);
        for (const auto &[insets, fitted] : insetsCases) {
            OSTImagePainter ninePatch;
            ninePatch.setImage(source);
            ninePatch.setCapInsets(insets);
            for (const QSize &box : boxes)
                for (const qreal ratio : {1.0, 2.0}) {
                    SCOPED_TRACE(testing::Message() << "image ratio " << imageRatio << ", insets " << insets.left()
                                                    << ' ' << insets.top() << ", box " << box.width() << 'x'
                                                    << box.height() << ", ratio " << ratio);
                    EXPECT_EQ(painted(ninePatch, box, ratio), drawnByQt(source, fitted, box, ratio));
                }
        }
    }

    imagePainter.setCapInsets(QMargins(-3, 400, 1'000'000, 50));
    EXPECT_FALSE(painted(imagePainter, {100, 60}, 1).isNull()) << "hostile insets stay in bounds";
}

TEST(ImagePainter, ContentModesPlaceTheImageAndNothingShowsOutsideTheBox)
{
    const QRectF filled = OSTImagePainter::placement({20, 10}, {0, 0, 100, 100}, UIViewContentModeScaleAspectFill);
    EXPECT_EQ(filled.size(), QSizeF(200, 100));
    const QRectF fitted = OSTImagePainter::placement({20, 10}, {0, 0, 100, 100}, UIViewContentModeScaleAspectFit);
    EXPECT_EQ(fitted, QRectF(0, 25, 100, 50));
    EXPECT_EQ(OSTImagePainter::placement({20, 10}, {0, 0, 100, 100}, UIViewContentModeBottomRight), QRectF(80, 90, 20, 10));
    EXPECT_TRUE(OSTImagePainter::placement({}, {0, 0, 100, 100}, UIViewContentModeCenter).isEmpty());

    OSTImagePainter imagePainter;
    imagePainter.setImage(test::imageOfColor(Qt::red, {20, 10}));
    imagePainter.setContentMode(UIViewContentModeScaleAspectFill);
    const QImage image = painted(imagePainter, {40, 40}, 2);
    EXPECT_TRUE(colorNear(pixelAt(image, {1, 1}), QColor(Qt::red))) << "the filled image covers the box";
    EXPECT_TRUE(colorNear(pixelAt(image, {39, 39}), QColor(Qt::red)));
    EXPECT_TRUE(painted(OSTImagePainter(), {40, 40}, 1) == canvas({40, 40}, 1)) << "nothing without an image";
}

} // namespace
} // namespace ostrel
