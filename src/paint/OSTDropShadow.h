#pragma once

#include "screen/OSTShadow.h"

#include <QImage>
#include <QRectF>

class QPainter;

namespace ostrel {

// The blurred shadow that a rounded rectangle casts: the shape moved by the shadow's offset and
// blurred as a Gaussian whose standard deviation is half the blur radius, in the shadow's colour.
//
// The shadow is drawn from a nine-slice image: its corners at their true size and a one-pixel
// band in between stretched along the sides, so a shadow of any size costs the same. The image
// is made at the painter's device pixel ratio (lower for very large shadows, which are soft
// anyway) and kept until the corner radius, the ratio or a side too short to stretch changes.
// Owned by the view or item that casts it, and used on the thread that paints that owner.
class OSTDropShadow {
public:
    explicit OSTDropShadow(const OSTShadow &shadow);

    const OSTShadow &shadow() const { return m_shadow; }

    // The area the shadow of `shape` may cover.
    QRectF boundingRect(const QRectF &shape) const;

    // Paints the shadow of `shape` with rounded corners of `cornerRadius` (already limited to half
    // the shorter side). Changes the painter's smooth-pixmap hint.
    void paint(QPainter &painter, const QRectF &shape, qreal cornerRadius);

private:
    // What the cached image was made for, in device pixels.
    struct SliceKey {
        QSize shapeSize;
        qreal cornerRadius = 0;
        qreal devicePixelRatio = 0;

        friend bool operator==(const SliceKey &, const SliceKey &) = default;
    };

    SliceKey sliceKeyFor(const QSizeF &shapeSize, qreal cornerRadius, qreal devicePixelRatio) const;
    QImage makeSliceImage(const SliceKey &key) const;
    qreal sliceRatio(const QSizeF &shapeSize, qreal cornerRadius, qreal deviceRatio) const;
    int blurReach(qreal devicePixelRatio) const;
    qreal logicalReach() const;

    const OSTShadow m_shadow;
    SliceKey m_sliceKey;
    QImage m_sliceImage;
};

} // namespace ostrel
