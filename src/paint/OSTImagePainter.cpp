#include "paint/OSTImagePainter.h"

#include "paint/OSTPaintedLayerCache.h"

#include <QPainter>
#include <QPixmap>
#include <QVarLengthArray>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// Each of two opposite insets, shared in proportion when together they exceed `extent`.
std::pair<int, int> fittedPair(int first, int second, qreal extent)
{
    first = std::max(first, 0);
    second = std::max(second, 0);
    const qreal total = qreal(first) + second;
    const qreal scale = total > extent && total > 0 ? extent / total : 1;
    return {int(first * scale), int(second * scale)};
}

// One piece of a nine-patch: the part of the source between the given edges, drawn stretched
// over the part of the box between the target edges.
struct NinePatchPiece {
    int sourceStart;
    int sourceLength;
    qreal targetStart;
    qreal targetEnd;
};

} // namespace

QRectF OSTImagePainter::placement(const QSizeF &imageSize, const QRectF &bounds, UIViewContentMode mode)
{
    if (imageSize.isEmpty())
        return {};
    QSizeF size = imageSize;
    switch (mode) {
    case UIViewContentModeScaleToFill:
    case UIViewContentModeRedraw:
        return bounds;
    case UIViewContentModeScaleAspectFit:
        size = imageSize.scaled(bounds.size(), Qt::KeepAspectRatio);
        break;
    case UIViewContentModeScaleAspectFill:
        size = imageSize.scaled(bounds.size(), Qt::KeepAspectRatioByExpanding);
        break;
    default:
        break;
    }
    QRectF placed(QPointF(), size);
    placed.moveCenter(bounds.center());
    switch (mode) {
    case UIViewContentModeTop: placed.moveTop(bounds.top()); break;
    case UIViewContentModeBottom: placed.moveBottom(bounds.bottom()); break;
    case UIViewContentModeLeft: placed.moveLeft(bounds.left()); break;
    case UIViewContentModeRight: placed.moveRight(bounds.right()); break;
    case UIViewContentModeTopLeft: placed.moveTopLeft(bounds.topLeft()); break;
    case UIViewContentModeTopRight: placed.moveTopRight(bounds.topRight()); break;
    case UIViewContentModeBottomLeft: placed.moveBottomLeft(bounds.bottomLeft()); break;
    case UIViewContentModeBottomRight: placed.moveBottomRight(bounds.bottomRight()); break;
    default: break;
    }
    return placed;
}

void OSTImagePainter::paint(QPainter &painter, const QSize &size) const
{
    if (m_image.isNull())
        return;
    OSTPaintedLayerCache::draw(painter, layerKey(), size,
                               [this, size](QPainter &layerPainter) { paintImage(layerPainter, size); });
}

QMargins OSTImagePainter::fittedInsets() const
{
    const QSizeF size = m_image.deviceIndependentSize();
    const auto [left, right] = fittedPair(m_capInsets->left(), m_capInsets->right(), size.width());
    const auto [top, bottom] = fittedPair(m_capInsets->top(), m_capInsets->bottom(), size.height());
    return QMargins(left, top, right, bottom);
}

QString OSTImagePainter::layerKey() const
{
    const QMargins insets = m_capInsets ? fittedInsets() : QMargins();
    return u"image %1 %2 %3 %4 %5 %6 %7"_s.arg(m_image.cacheKey())
        .arg(int(m_contentMode))
        .arg(m_capInsets ? 1 : 0)
        .arg(insets.left())
        .arg(insets.top())
        .arg(insets.right())
        .arg(insets.bottom());
}

void OSTImagePainter::paintImage(QPainter &painter, const QSize &size) const
{
    const QRect box(QPoint(), size);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setClipRect(box);
    if (m_capInsets) {
        paintNinePatch(painter, box);
        return;
    }
    painter.drawImage(placement(m_image.deviceIndependentSize(), QRectF(box), m_contentMode), m_image);
}

void OSTImagePainter::paintNinePatch(QPainter &painter, const QRect &box) const
{
    // The corners keep the insets' size, the edges stretch along their side and the centre both
    // ways. The box's insets equal the image's; a piece without extent on either side is left
    // out. Drawn as pixmap fragments, each centred on its target.
    const QMargins insets = fittedInsets();
    // The source is cut at the insets counted in the image's own pixels, whatever its device
    // pixel ratio, as Qt's border pixmap drawing cuts it.
    const QPixmap pixmap = QPixmap::fromImage(m_image);
    const QRect source(QPoint(), m_image.size());
    const auto pieces = [](int sourceStart, int sourceLength, int leading, int trailing, int boxStart, int boxLength) {
        const int centreStart = boxStart + leading;
        const int centreEnd = boxStart + boxLength - trailing;
        return std::array<NinePatchPiece, 3>{
            NinePatchPiece{sourceStart, leading, qreal(boxStart), qreal(centreStart)},
            NinePatchPiece{sourceStart + leading, sourceLength - leading - trailing, qreal(centreStart), qreal(centreEnd)},
            NinePatchPiece{sourceStart + sourceLength - trailing, trailing, qreal(centreEnd), qreal(boxStart + boxLength)}};
    };
    const auto columns = pieces(source.left(), source.width(), insets.left(), insets.right(), box.left(), box.width());
    const auto rows = pieces(source.top(), source.height(), insets.top(), insets.bottom(), box.top(), box.height());

    // Corners first, then the top and bottom edges, the left and right ones and the centre.
    constexpr std::array<std::pair<int, int>, 9> order{{{0, 0}, {2, 0}, {0, 2}, {2, 2}, {1, 0}, {1, 2}, {0, 1}, {2, 1}, {1, 1}}};
    QVarLengthArray<QPainter::PixmapFragment, 9> fragments;
    for (const auto &[column, row] : order) {
        const NinePatchPiece &across = columns.at(column);
        const NinePatchPiece &down = rows.at(row);
        if (across.sourceLength <= 0 || down.sourceLength <= 0 || across.targetEnd <= across.targetStart
            || down.targetEnd <= down.targetStart)
            continue;
        fragments.append(QPainter::PixmapFragment::create(
            QPointF(0.5 * (across.targetStart + across.targetEnd), 0.5 * (down.targetStart + down.targetEnd)),
            QRectF(across.sourceStart, down.sourceStart, across.sourceLength, down.sourceLength),
            (across.targetEnd - across.targetStart) / across.sourceLength,
            (down.targetEnd - down.targetStart) / down.sourceLength));
    }
    const bool antialiased = painter.testRenderHint(QPainter::Antialiasing);
    if (antialiased && painter.combinedTransform().type() != QTransform::TxNone)
        painter.setRenderHint(QPainter::Antialiasing, false);
    if (!fragments.isEmpty())
        painter.drawPixmapFragments(fragments.constData(), int(fragments.size()), pixmap);
    painter.setRenderHint(QPainter::Antialiasing, antialiased);
}

} // namespace ostrel
