#include "widgets/OSTRoundedClipEffect.h"

#include "widgets/OSTBackgroundView.h"
#include "paint/OSTPaintedLayerCache.h"

#include <QPainter>
#include <QPainterPath>

namespace ostrel {

namespace {

// Scales every pixel of `layer` by the coverage `mask` (the same size) gives it: what lies
// outside the outline goes, its antialiased edge fades. A plain loop over premultiplied pixels,
// so nothing is handed to Qt's thread pool.
void keepCovered(QImage &layer, const QImage &mask)
{
    const int width = std::min(layer.width(), mask.width());
    const int height = std::min(layer.height(), mask.height());
    for (int y = 0; y < height; ++y) {
        auto *pixels = reinterpret_cast<QRgb *>(layer.scanLine(y));
        const auto *coverage = reinterpret_cast<const QRgb *>(mask.constScanLine(y));
        for (int x = 0; x < width; ++x) {
            const uint alpha = qAlpha(coverage[x]);
            if (alpha == 255)
                continue;
            const QRgb pixel = pixels[x];
            // (value * alpha) / 255, rounded, for each channel of the premultiplied pixel.
            const auto scaled = [alpha](uint value) {
                const uint product = value * alpha + 128;
                return (product + (product >> 8)) >> 8;
            };
            pixels[x] = qRgba(scaled(qRed(pixel)), scaled(qGreen(pixel)), scaled(qBlue(pixel)), scaled(qAlpha(pixel)));
        }
    }
}

} // namespace

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
    const QSize size = layer.deviceIndependentSize().toSize();
    keepCovered(layer, outlineMask(size, ratio, offset));
    if (m_box->boxPainter().hasBorder()) {
        QPainter layerPainter(&layer);
        layerPainter.drawImage(QPoint(), borderLayer(size, ratio, offset));
    }
    painter->drawImage(offset, layer);
}

QString OSTRoundedClipEffect::shapeKey(QPoint offset) const
{
    return QStringLiteral("%1 %2 %3 %4 %5")
        .arg(m_box->width())
        .arg(m_box->height())
        .arg(m_box->cornerRadius())
        .arg(offset.x())
        .arg(offset.y());
}

QImage OSTRoundedClipEffect::outlineMask(const QSize &size, qreal ratio, QPoint offset) const
{
    return OSTPaintedLayerCache::layer(QStringLiteral("clip ") + shapeKey(offset), size, ratio, [&](QPainter &painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillPath(m_box->boxPainter().outline(m_box->size()).translated(-offset), Qt::black);
    });
}

QImage OSTRoundedClipEffect::borderLayer(const QSize &size, qreal ratio, QPoint offset) const
{
    const QString key = QStringLiteral("border ") + shapeKey(offset) + u' ' + m_box->boxPainter().borderKey();
    return OSTPaintedLayerCache::layer(key, size, ratio, [&](QPainter &painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-offset);
        m_box->boxPainter().paintBorder(painter, m_box->size());
    });
}

} // namespace ostrel
