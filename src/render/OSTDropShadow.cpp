#include "render/OSTDropShadow.h"

#include "render/OSTColorHelpers.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace ostrel {

namespace {

// Three successive box blurs approximate a Gaussian closely; these are their radii for a
// standard deviation of `sigma` pixels (the widths of "boxes for Gauss").
std::array<int, 3> boxRadiiForGaussian(qreal sigma)
{
    constexpr int passes = 3;
    const qreal variance = sigma * sigma;
    int lowerWidth = int(std::floor(std::sqrt(12 * variance / passes + 1)));
    if (lowerWidth % 2 == 0)
        --lowerWidth;
    const int upperWidth = lowerWidth + 2;
    const int lowerCount = qRound((12 * variance - passes * lowerWidth * lowerWidth
                                   - 4 * passes * lowerWidth - 3 * passes)
                                  / (-4.0 * lowerWidth - 4));
    std::array<int, 3> radii{};
    for (int pass = 0; pass < passes; ++pass)
        radii[pass] = ((pass < lowerCount ? lowerWidth : upperWidth) - 1) / 2;
    return radii;
}

// Replaces each value of a line by the mean of the values within `radius` of it; values beyond
// the line's ends count as 0. `stride` is the distance between neighbours in memory.
void boxBlurLine(uchar *line, int length, qsizetype stride, int radius, std::vector<int> &values)
{
    values.resize(length);
    for (int index = 0; index < length; ++index)
        values[index] = line[index * stride];
    const int width = 2 * radius + 1;
    int sum = 0;
    for (int index = 0; index < std::min(radius, length); ++index)
        sum += values[index];
    for (int index = 0; index < length; ++index) {
        if (index + radius < length)
            sum += values[index + radius];
        if (index - radius - 1 >= 0)
            sum -= values[index - radius - 1];
        line[index * stride] = uchar((sum + width / 2) / width);
    }
}

void gaussianBlur(QImage &alphaMask, qreal sigma)
{
    std::vector<int> values;
    uchar *bits = alphaMask.bits();
    const qsizetype bytesPerLine = alphaMask.bytesPerLine();
    for (const int radius : boxRadiiForGaussian(sigma)) {
        if (radius == 0)
            continue;
        for (int row = 0; row < alphaMask.height(); ++row)
            boxBlurLine(bits + row * bytesPerLine, alphaMask.width(), 1, radius, values);
        for (int column = 0; column < alphaMask.width(); ++column)
            boxBlurLine(bits + column, alphaMask.height(), bytesPerLine, radius, values);
    }
}

QImage colorized(const QImage &alphaMask, const QColor &color)
{
    QImage image(alphaMask.size(), QImage::Format_ARGB32_Premultiplied);
    const QRgb rgba = color.rgba();
    for (int row = 0; row < alphaMask.height(); ++row) {
        const uchar *coverage = alphaMask.constScanLine(row);
        auto *pixels = reinterpret_cast<QRgb *>(image.scanLine(row));
        for (int column = 0; column < alphaMask.width(); ++column) {
            const int alpha = (coverage[column] * qAlpha(rgba) + 127) / 255;
            pixels[column] = qPremultiply(qRgba(qRed(rgba), qGreen(rgba), qBlue(rgba), alpha));
        }
    }
    return image;
}

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
    const auto radii = boxRadiiForGaussian(m_shadow.blurRadius / 2 * devicePixelRatio);
    return radii[0] + radii[1] + radii[2];
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
    gaussianBlur(mask, m_shadow.blurRadius / 2 * key.devicePixelRatio);
    return colorized(mask, m_shadow.color);
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
