#pragma once

#include "paint/OSTDropShadow.h"

#include <QMarginsF>
#include <QRectF>

class QPainter;

namespace ostrel {

// The object shadow an element casts: the rounded outline of its box, moved by the shadow's
// offset and blurred (OSTDropShadow), beneath the element and beyond its frame. A toolkit that
// cannot paint outside an item's bounds makes the item larger by margins() and paints the
// shadow of the frame inset by them.
//
// Coordinates are the painter's; the frame is where the element's box lies in them. Keeps the
// blurred image it paints from, so paint() is not const. A value type owned by the view or item
// that casts the shadow; paints on whichever thread owns that item's painter.
class OSTElementShadowPainter {
public:
    explicit OSTElementShadowPainter(const OSTShadow &shadow) : m_dropShadow(shadow) {}

    const OSTShadow &shadow() const { return m_dropShadow.shadow(); }

    // How far the shadow reaches beyond the frame on each side (0 where it stays within), for
    // a frame of any size.
    QMarginsF margins() const;
    // The frame and the area its shadow may cover.
    QRectF boundingRect(const QRectF &frame) const { return m_dropShadow.boundingRect(frame); }

    // Paints the shadow of a box filling `frame` with corners of `cornerRadius` (as
    // OSTBoxPainter::cornerRadius gives it). The painter's state is kept.
    void paint(QPainter &painter, const QRectF &frame, qreal cornerRadius);

private:
    OSTDropShadow m_dropShadow;
};

} // namespace ostrel
