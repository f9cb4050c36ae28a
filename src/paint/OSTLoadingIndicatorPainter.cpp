#include "paint/OSTLoadingIndicatorPainter.h"

#include <QPainter>

namespace ostrel {

namespace {

constexpr qreal dimmingAlpha = 0.75;
constexpr int spinnerDiameter = 37;
constexpr int spinnerSpokes = 12;

} // namespace

void OSTLoadingIndicatorPainter::paint(QPainter &painter, const QSizeF &size, qreal presence, qreal angle)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(presence);
    painter.fillRect(QRectF(QPointF(), size), QColor::fromRgbF(0, 0, 0, dimmingAlpha));
    paintSpinner(painter, size, angle);
    painter.restore();
}

void OSTLoadingIndicatorPainter::paintSpinner(QPainter &painter, const QSizeF &size, qreal angle)
{
    painter.translate(QRectF(QPointF(), size).center());
    painter.rotate(angle);
    const qreal outer = spinnerDiameter / 2.0;
    QPen pen(Qt::white, 3.5, Qt::SolidLine, Qt::RoundCap);
    for (int spoke = 0; spoke < spinnerSpokes; ++spoke) {
        QColor color = Qt::white;
        color.setAlphaF(0.25 + 0.75 * spoke / (spinnerSpokes - 1));
        pen.setColor(color);
        painter.setPen(pen);
        painter.drawLine(QPointF(0, -outer * 0.45), QPointF(0, -outer));
        painter.rotate(360.0 / spinnerSpokes);
    }
}

} // namespace ostrel
