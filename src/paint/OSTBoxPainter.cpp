#include "paint/OSTBoxPainter.h"

#include "screen/OSTColorHelpers.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QColor rgbaColor(const QColor &color)
{
    return color.isValid() ? color.toRgb() : QColor(Qt::transparent);
}

// `top` laid over `bottom`, as seen through translucent parts of `top`.
QColor sourceOver(const QColor &top, const QColor &bottom)
{
    const float topAlpha = top.alphaF();
    const float bottomWeight = bottom.alphaF() * (1 - topAlpha);
    const float alpha = topAlpha + bottomWeight;
    if (alpha <= 0)
        return QColor(Qt::transparent);
    const auto mix = [&](float topComponent, float bottomComponent) {
        return (topComponent * topAlpha + bottomComponent * bottomWeight) / alpha;
    };
    return QColor::fromRgbF(mix(top.redF(), bottom.redF()), mix(top.greenF(), bottom.greenF()),
                            mix(top.blueF(), bottom.blueF()), alpha);
}

} // namespace

bool OSTBoxPainter::isRounded() const
{
    return m_look.cornerStyle == OSTBoxLook::CornerStyle::Circle || m_look.cornerRadius > 0;
}

qreal OSTBoxPainter::cornerRadius(const QSizeF &size) const
{
    const qreal requested = m_look.cornerStyle == OSTBoxLook::CornerStyle::Circle ? size.height() / 2.0 : m_look.cornerRadius;
    const qreal largest = std::min(size.width(), size.height()) / 2.0;
    return std::clamp<qreal>(requested, 0, largest);
}

QPainterPath OSTBoxPainter::outline(const QSizeF &size) const
{
    QPainterPath path;
    const qreal radius = cornerRadius(size);
    path.addRoundedRect(QRectF(QPointF(), size), radius, radius);
    return path;
}

QGradientStops OSTBoxPainter::gradientStops(const QList<QColor> &colors)
{
    QGradientStops stops;
    const auto count = static_cast<unsigned>(colors.size());
    for (unsigned index = 0; index < count; ++index) {
        const unsigned location = count == 1 ? 0 : index / (count - 1);
        stops.append({qreal(location), rgbaColor(colors.at(index))});
    }
    return stops;
}

void OSTBoxPainter::paint(QPainter &painter, const QSizeF &size, Border border) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath shape = outline(size);
    if (m_look.gradient && !m_look.gradient->colors.isEmpty())
        paintGradient(painter, shape, size);
    else if (!ost_isClear(m_look.fillColor))
        painter.fillPath(shape, m_look.fillColor);
    if (border == Border::Included)
        paintBorder(painter, size);
    painter.restore();
}

void OSTBoxPainter::paintGradient(QPainter &painter, const QPainterPath &shape, const QSizeF &size) const
{
    // The base colour shows only through translucent stops. Laying every stop over it and
    // filling once keeps the base colour from bleeding out along the antialiased outline.
    QGradientStops stops = gradientStops(m_look.gradient->colors);
    for (auto &stop : stops)
        stop.second = sourceOver(stop.second, m_look.fillColor);
    const QRectF bounds(QPointF(), size);

    if (m_look.gradient->radius) {
        // Beyond the end circle the last colour goes on (pad spread); a circle without area
        // leaves only that colour.
        if (*m_look.gradient->radius <= 0) {
            painter.fillPath(shape, stops.constLast().second);
            return;
        }
        QRadialGradient radial(bounds.center(), *m_look.gradient->radius);
        radial.setStops(stops);
        painter.fillPath(shape, radial);
        return;
    }

    const bool horizontal = m_look.gradient->direction == OSTBoxLook::GradientDirection::Horizontal;
    const QPointF start = horizontal ? QPointF(bounds.left(), bounds.center().y())
                                     : QPointF(bounds.center().x(), bounds.top());
    const QPointF end = horizontal ? QPointF(bounds.right(), bounds.center().y())
                                   : QPointF(bounds.center().x(), bounds.bottom());
    QLinearGradient linear(start, end);
    linear.setStops(stops);
    painter.fillPath(shape, linear);
}

QString OSTBoxPainter::borderKey() const
{
    return u"%1 %2"_s.arg(m_look.borderWidth).arg(m_look.borderColor.rgba(), 0, 16);
}

void OSTBoxPainter::paintBorder(QPainter &painter, const QSizeF &size) const
{
    if (m_look.borderWidth <= 0)
        return;
    // The border lies inside the box along its rounded outline; a border wider than half the
    // box fills it.
    const QRectF bounds(QPointF(), size);
    const qreal radius = cornerRadius(size);
    QPainterPath band;
    band.addRoundedRect(bounds, radius, radius);
    const QRectF inner = bounds.adjusted(m_look.borderWidth, m_look.borderWidth, -m_look.borderWidth, -m_look.borderWidth);
    if (inner.isValid()) {
        const qreal innerRadius = std::max<qreal>(0, radius - m_look.borderWidth);
        band.addRoundedRect(inner, innerRadius, innerRadius);
    }
    painter.fillPath(band, m_look.borderColor);
}

} // namespace ostrel
