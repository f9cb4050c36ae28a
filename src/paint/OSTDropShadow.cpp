#include "paint/OSTDropShadow.h"

#include "screen/OSTColorHelpers.h"
#include "paint/OSTAlphaBlur.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace ostrel {

namespace {

// Splits [0, total) into a leading margin, a middle and a trailing margin.
std::array<qreal, 4> sliceEdges(qreal start, qreal total, qreal margin)
{
    return {start, start + margin, start + total - margin, start + total};
}

// Shadows are soft: one whose image would be larger than this many pixels a side is made at a
// lower resolution and scaled up, so hostile sizes cannot exhaust memory.
constexpr qreal maximumSliceSide = 1024;

} // namespace

OSTDropShadow::OSTDropShadow(const OSTShadow &shadow) : m_shadow(shadow) {}

int OSTDropShadow::blurReach(qreal devicePixelRatio) const
{
    return OSTAlphaBlur::reach(m_shadow.blurRadius / 2 * devicePixelRatio);
}

qreal OSTDropShadow::logicalReach() const
{
    // Three box blurs reach at most three standard deviations plus a pixel each, at any ratio of
    // one or more.
    return 1.5 * std::max<qreal>(m_shadow.blurRadius, 0) + 3;
}

QRectF OSTDropShadow::boundingRect(const QRectF &shape) const
{
    const qreal reach = logicalReach();
    return shape.united(shape.translated(m_shadow.offset).adjusted(-reach, -reach, reach, reach));
}

qreal OSTDropShadow::sliceRatio(const QSizeF &shapeSize, qreal cornerRadius, qreal deviceRatio) const
{
    const qreal reach = logicalReach();
    const qreal stretchable = 2 * cornerRadius + 2 * reach + 1;
    const qreal side = std::max(std::min(shapeSize.width(), stretchable),
                                std::min(shapeSize.height(), stretchable))
        + 2 * reach;
    return std::min(deviceRatio, maximumSliceSide / side);
}

OSTDropShadow::SliceKey OSTDropShadow::sliceKeyFor(const QSizeF &shapeSize, qreal cornerRadius,
                                                   qreal devicePixelRatio) const
{
    // The shortest shape whose middle band the blurred corners do not reach.
    const int reach = blurReach(devicePixelRatio);
    const qreal deviceRadius = cornerRadius * devicePixelRatio;
    const int stretchable = 2 * int(std::ceil(deviceRadius)) + 2 * reach + 1;
    const QSize deviceSize = (shapeSize * devicePixelRatio).toSize();
    return SliceKey{QSize(std::min(deviceSize.width(), stretchable),
                          std::min(deviceSize.height(), stretchable)),
                    deviceRadius, devicePixelRatio};
}

QImage OSTDropShadow::makeSliceImage(const SliceKey &key) const
{
    const int reach = blurReach(key.devicePixelRatio);
    QImage mask(key.shapeSize + QSize(2 * reach, 2 * reach), QImage::Format_Alpha8);
    mask.fill(0);
    {
        QPainter painter(&mask);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath shape;
        shape.addRoundedRect(QRectF(QPointF(reach, reach), QSizeF(key.shapeSize)), key.cornerRadius,
                             key.cornerRadius);
        painter.fillPath(shape, Qt::black);
    }
    OSTAlphaBlur::blur(mask, m_shadow.blurRadius / 2 * key.devicePixelRatio);
    return OSTAlphaBlur::colorized(mask, m_shadow.color);
}

void OSTDropShadow::paint(QPainter &painter, const QRectF &shape, qreal cornerRadius)
{
    if (ost_isClear(m_shadow.color) || shape.isEmpty() || !painter.device())
        return;
    const qreal deviceRatio = painter.device()->devicePixelRatioF();
    const qreal ratio = sliceRatio(shape.size(), cornerRadius, deviceRatio);
    const SliceKey key = sliceKeyFor(shape.size(), cornerRadius, ratio);
    if (!(key == m_sliceKey) || m_sliceImage.isNull()) {
        m_sliceImage = makeSliceImage(key);
        m_sliceKey = key;
    }

    // Margins of the slices in image pixels; an axis short enough to be drawn whole has none.
    const int reach = blurReach(ratio);
    const QSize pixelSize = (shape.size() * ratio).toSize();
    const int cornerMargin = 2 * reach + int(std::ceil(key.cornerRadius));
    const int marginX = pixelSize.width() > key.shapeSize.width() ? cornerMargin : 0;
    const int marginY = pixelSize.height() > key.shapeSize.height() ? cornerMargin : 0;

    const qreal reachInPoints = reach / ratio;
    const QRectF target = shape.translated(m_shadow.offset)
                              .adjusted(-reachInPoints, -reachInPoints, reachInPoints, reachInPoints);
    // Slices drawn at their own size need no filtering; a shadow made below the device's ratio
    // is scaled up smoothly.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, ratio < deviceRatio);
    const auto sourceX = sliceEdges(0, m_sliceImage.width(), marginX);
    const auto sourceY = sliceEdges(0, m_sliceImage.height(), marginY);
    const auto targetX = sliceEdges(target.left(), target.width(), marginX / ratio);
    const auto targetY = sliceEdges(target.top(), target.height(), marginY / ratio);
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 3; ++column) {
            const QRectF source(QPointF(sourceX[column], sourceY[row]),
                                QPointF(sourceX[column + 1], sourceY[row + 1]));
            if (source.isEmpty())
                continue;
            const QRectF destination(QPointF(targetX[column], targetY[row]),
                                     QPointF(targetX[column + 1], targetY[row + 1]));
            painter.drawImage(destination, m_sliceImage, source);
        }
    }
}

} // namespace ostrel
