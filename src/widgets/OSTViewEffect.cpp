#include "widgets/OSTViewEffect.h"

#include "widgets/OSTBackgroundView.h"

#include <QPainter>
#include <QWidget>

namespace ostrel {

OSTViewEffect::OSTViewEffect(const OSTBackgroundView *outline, QObject *parent)
    : QGraphicsEffect(parent), m_outline(outline)
{
}

void OSTViewEffect::applyTo(QWidget &view, const OSTBackgroundView *outline, qreal opacity,
                            const std::optional<OSTShadow> &shadow)
{
    auto *effect = qobject_cast<OSTViewEffect *>(view.graphicsEffect());
    if (opacity >= 1 && !shadow) {
        if (effect)
            view.setGraphicsEffect(nullptr);
        return;
    }
    if (!effect || effect->m_outline != outline) {
        effect = new OSTViewEffect(outline);
        view.setGraphicsEffect(effect); // the view owns it from here on
    }
    effect->setOpacity(opacity);
    effect->setShadow(shadow);
}

void OSTViewEffect::setOpacity(qreal opacity)
{
    if (opacity == m_opacity)
        return;
    m_opacity = opacity;
    update();
}

void OSTViewEffect::setShadow(const std::optional<OSTShadow> &shadow)
{
    if (shadow && m_shadow && m_shadow->shadow() == *shadow)
        return;
    if (shadow)
        m_shadow.emplace(*shadow);
    else
        m_shadow.reset();
    updateBoundingRect();
    update();
}

QRectF OSTViewEffect::boundingRectFor(const QRectF &sourceRect) const
{
    return m_shadow ? m_shadow->boundingRect(sourceRect) : sourceRect;
}

void OSTViewEffect::draw(QPainter *painter)
{
    if (m_opacity <= 0)
        return;
    // The view is always taken as a pixmap: drawn straight through drawSource(), Qt misplaces it
    // by its own offset when the window is rendered with QWidget::render (previews, captures).
    QPoint sourceOffset;
    const QPixmap source = sourcePixmap(Qt::LogicalCoordinates, &sourceOffset, NoPad);
    if (source.isNull())
        return;
    if (m_opacity < 1) {
        drawTranslucent(*painter, source, sourceOffset);
        return;
    }
    paintShadow(*painter);
    painter->drawPixmap(sourceOffset, source);
}

void OSTViewEffect::paintShadow(QPainter &painter)
{
    if (!m_shadow || !m_outline)
        return;
    m_shadow->paint(painter, sourceBoundingRect(Qt::LogicalCoordinates), m_outline->cornerRadius());
}

void OSTViewEffect::drawTranslucent(QPainter &painter, const QPixmap &source, QPoint sourceOffset)
{
    // The view and its shadow fade as one layer, as a view's opacity does: composed at full
    // opacity first, then drawn once with the view's opacity. Only the part of the layer that
    // lies on the device is composed.
    const QPaintDevice &device = *painter.device();
    const QSizeF deviceSize = QSizeF(device.width(), device.height()) / device.devicePixelRatioF();
    const QRectF deviceArea = painter.worldTransform().inverted().mapRect(QRectF(QPointF(), deviceSize));
    const QRect area = boundingRectFor(sourceBoundingRect(Qt::LogicalCoordinates))
                           .intersected(deviceArea)
                           .toAlignedRect();
    if (area.isEmpty())
        return;
    const qreal ratio = source.devicePixelRatio();
    QImage layer((QSizeF(area.size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(ratio);
    layer.fill(Qt::transparent);
    {
        QPainter layerPainter(&layer);
        layerPainter.translate(-area.topLeft());
        paintShadow(layerPainter);
        layerPainter.drawPixmap(sourceOffset, source);
    }
    painter.save();
    painter.setOpacity(m_opacity);
    painter.drawImage(area.topLeft(), layer);
    painter.restore();
}

} // namespace ostrel
