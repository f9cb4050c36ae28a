#include "render/OSTRoundedClipEffect.h"

#include "render/OSTBackgroundView.h"

#include <QPainter>
#include <QPainterPath>

namespace ostrel {

// No QObject parent: the box owns its effect through setGraphicsEffect, and a parent would make
// the box see the effect arrive as a child while it decides whether to install it.
OSTRoundedClipEffect::OSTRoundedClipEffect(OSTBackgroundView *box) : m_box(box) {}

void OSTRoundedClipEffect::draw(QPainter *painter)
{
    // Taken as a pixmap, never drawn through drawSource(): Qt misplaces a drawn source by its
    // own offset when the window is rendered with QWidget::render.
    QPoint offset;
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, &offset, NoPad);
    if (source.isNull() || !m_box)
        return;
    const qreal ratio = source.devicePixelRatio();
    QImage layer = source.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(ratio);
    {
        QPainter layerPainter(&layer);
        layerPainter.setRenderHint(QPainter::Antialiasing);
        // Keep only what lies inside the rounded outline, with antialiased edges.
        QPainterPath outside;
        outside.addRect(QRectF(QPointF(), QSizeF(layer.size()) / ratio));
        outside = outside.subtracted(m_box->outline().translated(-offset));
        layerPainter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        layerPainter.fillPath(outside, Qt::black);
        layerPainter.setCompositionMode(QPainter::CompositionMode_SourceOver);
        layerPainter.translate(-offset);
        m_box->paintBorder(layerPainter);
    }
    painter->drawImage(offset, layer);
}

} // namespace ostrel
