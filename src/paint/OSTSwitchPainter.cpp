#include "paint/OSTSwitchPainter.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr qreal thumbInset = 2;

} // namespace

void OSTSwitchPainter::setOnTintColor(const QColor &color)
{
    m_onTint = color.isValid() ? color : defaultOnTint();
}

void OSTSwitchPainter::setTintColor(const QColor &color)
{
    m_tint = color.isValid() ? color : defaultTint();
}

void OSTSwitchPainter::setThumbTintColor(const QColor &color)
{
    m_thumbTint = color.isValid() ? color : QColor(Qt::white);
}

QString OSTSwitchPainter::key(qreal position, const QColor &focusColor) const
{
    return u"switch %1 %2 %3 %4 %5"_s.arg(m_tint.rgba(), 0, 16)
        .arg(m_onTint.rgba(), 0, 16)
        .arg(m_thumbTint.rgba(), 0, 16)
        .arg(position)
        .arg(focusColor.isValid() ? focusColor.rgba() : 0, 0, 16);
}

void OSTSwitchPainter::paint(QPainter &painter, const QSizeF &size, qreal position, const QColor &focusColor) const
{
    position = std::clamp<qreal>(position, 0, 1);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF track = QRectF(QPointF(), size).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = track.height() / 2;

    // The off outline shows around a track that fills with the on colour as the thumb slides.
    painter.setPen(QPen(m_tint, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(track, radius, radius);
    QColor fill = m_onTint;
    fill.setAlphaF(fill.alphaF() * position);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    const qreal diameter = track.height() - 2 * thumbInset;
    const qreal travel = track.width() - 2 * thumbInset - diameter;
    const QRectF thumb(track.left() + thumbInset + travel * position, track.top() + thumbInset, diameter, diameter);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(thumb.translated(0, 1));
    painter.setBrush(m_thumbTint);
    painter.drawEllipse(thumb);
    if (focusColor.isValid()) {
        painter.setPen(QPen(focusColor, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    }
}

} // namespace ostrel
