#include "widgets/OSTBackgroundView.h"

#include "screen/OSTColorHelpers.h"
#include "widgets/OSTRoundedClipEffect.h"

#include <QChildEvent>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

#include <algorithm>
#include <cmath>

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

OSTBackgroundView::OSTBackgroundView(const QRect &frame, const OSTBoxLook &look, QWidget *parent)
    : QWidget(parent)
{
    // Only what paintEvent draws is visible: no palette background, even when grabbed.
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(frame);
    setLook(look);
}

void OSTBackgroundView::setLook(const OSTBoxLook &look)
{
    m_look = look;
    updateChildClipping();
    update();
}

qreal OSTBackgroundView::cornerRadius() const
{
    const qreal requested = m_look.cornerStyle == OSTBoxLook::CornerStyle::Circle ? height() / 2.0 : m_look.cornerRadius;
    const qreal largest = std::min(width(), height()) / 2.0;
    return std::clamp<qreal>(requested, 0, largest);
}

QGradientStops OSTBackgroundView::gradientStops(const QList<QColor> &colors)
{
    QGradientStops stops;
    const auto count = static_cast<unsigned>(colors.size());
    for (unsigned index = 0; index < count; ++index) {
        const unsigned location = count == 1 ? 0 : index / (count - 1);
        stops.append({qreal(location), rgbaColor(colors.at(index))});
    }
    return stops;
}

QPainterPath OSTBackgroundView::outline() const
{
    QPainterPath path;
    const qreal radius = cornerRadius();
    path.addRoundedRect(QRectF(rect()), radius, radius);
    return path;
}

void OSTBackgroundView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintBox(painter);
}

void OSTBackgroundView::paintBox(QPainter &painter) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath shape = outline();
    if (m_look.gradient && !m_look.gradient->colors.isEmpty())
        paintGradient(painter, shape);
    else if (!ost_isClear(m_look.fillColor))
        painter.fillPath(shape, m_look.fillColor);
    // With children, the border is drawn above them by the clip effect.
    if (!clipsChildren())
        paintBorder(painter);
    painter.restore();
}

bool OSTBackgroundView::clipsChildren() const
{
    return qobject_cast<OSTRoundedClipEffect *>(graphicsEffect()) != nullptr;
}

void OSTBackgroundView::childEvent(QChildEvent *event)
{
    QWidget::childEvent(event);
    if (event->added() || event->removed())
        updateChildClipping();
}

void OSTBackgroundView::updateChildClipping()
{
    const bool hasChildren = !findChildren<QWidget *>(Qt::FindDirectChildrenOnly).isEmpty();
    const bool rounded = m_look.cornerStyle == OSTBoxLook::CornerStyle::Circle || m_look.cornerRadius > 0;
    const bool needsClipping = hasChildren && (m_look.borderWidth > 0 || rounded);
    if (needsClipping == clipsChildren())
        return;
    setGraphicsEffect(needsClipping ? new OSTRoundedClipEffect(this) : nullptr);
}

void OSTBackgroundView::paintGradient(QPainter &painter, const QPainterPath &shape) const
{
    // The base colour shows only through translucent stops. Laying every stop over it and
    // filling once keeps the base colour from bleeding out along the antialiased outline.
    QGradientStops stops = gradientStops(m_look.gradient->colors);
    for (auto &stop : stops)
        stop.second = sourceOver(stop.second, m_look.fillColor);
    const QRectF bounds(rect());

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

QString OSTBackgroundView::borderKey() const
{
    return u"%1 %2"_s.arg(m_look.borderWidth).arg(m_look.borderColor.rgba(), 0, 16);
}

void OSTBackgroundView::paintBorder(QPainter &painter) const
{
    if (m_look.borderWidth <= 0)
        return;
    // The border lies inside the box along its rounded outline; a border wider than half the
    // box fills it.
    const QRectF bounds(rect());
    const qreal radius = cornerRadius();
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
