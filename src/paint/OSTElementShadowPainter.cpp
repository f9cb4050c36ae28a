#include "paint/OSTElementShadowPainter.h"

#include <QPainter>

namespace ostrel {

QMarginsF OSTElementShadowPainter::margins() const
{
    // The reach depends on the offset and the blur only, so a unit frame shows it.
    const QRectF frame(0, 0, 1, 1);
    const QRectF covered = boundingRect(frame);
    return {frame.left() - covered.left(), frame.top() - covered.top(), covered.right() - frame.right(),
            covered.bottom() - frame.bottom()};
}

void OSTElementShadowPainter::paint(QPainter &painter, const QRectF &frame, qreal cornerRadius)
{
    painter.save();
    m_dropShadow.paint(painter, frame, cornerRadius);
    painter.restore();
}

} // namespace ostrel
