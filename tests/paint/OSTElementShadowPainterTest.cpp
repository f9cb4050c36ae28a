// The object shadow of an element, for an item that must be made larger to hold it.

#include "paint/OSTElementShadowPainter.h"

#include "widgets/OSTPixelTestSupport.h"

#include <QPainter>

namespace ostrel {
namespace {

TEST(ElementShadowPainter, MarginsHoldAllThePaintedShadowAndFollowItsOffset)
{
    OSTElementShadowPainter shadowPainter(OSTShadow{QColor(Qt::black), 4, QPointF(8, 2)});
    const QMarginsF margins = shadowPainter.margins();
    EXPECT_LT(margins.left(), margins.right()) << "moved to the right, it reaches further there";
    EXPECT_LT(margins.top(), margins.bottom());
    EXPECT_GE(margins.left(), 0);
    EXPECT_EQ(shadowPainter.boundingRect(QRectF(10, 20, 50, 30)), QRectF(10, 20, 50, 30) + margins)
        << "the same margins for any frame";

    // Painted for a frame inset by the margins, the shadow stays inside the item and shows
    // below and right of the frame.
    const QRectF frame = QRectF(0, 0, 60, 40) - margins;
    QImage item(QSizeF(60, 40).toSize(), QImage::Format_ARGB32_Premultiplied);
    item.fill(Qt::transparent);
    {
        QPainter painter(&item);
        painter.translate(margins.left(), margins.top());
        shadowPainter.paint(painter, QRectF(QPointF(), frame.size()), 6);
        EXPECT_EQ(painter.transform(), QTransform::fromTranslate(margins.left(), margins.top())) << "state kept";
    }
    EXPECT_GT(item.pixelColor(int(frame.right()) + 2, int(frame.center().y())).alpha(), 0);
    EXPECT_EQ(item.pixelColor(0, 0).alpha(), 0) << "a soft edge, faded out at the item's corner";

    OSTElementShadowPainter still(OSTShadow{QColor(Qt::black), 0, QPointF()});
    EXPECT_EQ(still.margins(), QMarginsF(3, 3, 3, 3)) << "an unblurred shadow keeps its antialiasing margin";
}

} // namespace
} // namespace ostrel
