#include "render/OSTBackgroundView.h"

#include "core/OSTDictionaryHelpers.h"
#include "render/OSTColorHelpers.h"
#include "render/OSTPropertyValues.h"
#include "render/OSTRoundedClipEffect.h"

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

QColor colorForKey(const QVariantMap &properties, const QString &key)
{
    return ost_colorWithHexString(ost_stringForKey(properties, key).value_or(QString()));
}

QColor colorFromEntry(const QVariant &entry)
{
    if (entry.typeId() != QMetaType::QString)
        return QColor(Qt::transparent);
    return ost_colorWithHexString(entry.toString());
}

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

OSTBackgroundView::OSTBackgroundView(const QRect &frame, const QVariantMap &properties,
                                     QWidget *parent)
    : QWidget(parent)
{
    // Only what paintEvent draws is visible: no palette background, even when grabbed.
    setAttribute(Qt::WA_NoSystemBackground);
    setGeometry(frame);
    customizeWithProperties(properties);
}

void OSTBackgroundView::customizeWithProperties(const QVariantMap &properties)
{
    readBorder(properties);
    readCorners(properties);
    readFill(properties);
    updateChildClipping();
    update();
}

void OSTBackgroundView::readBorder(const QVariantMap &properties)
{
    const qreal size = ost_stringNumberForKey(properties, u"borderSize"_s).value_or(0);
    const auto color = ost_stringForKey(properties, u"borderColor"_s);
    if (size > 0 && color) {
        m_borderWidth = size;
        m_borderColor = ost_colorWithHexString(*color);
    } else {
        m_borderWidth = 0;
        m_borderColor = QColor();
    }
}

void OSTBackgroundView::readCorners(const QVariantMap &properties)
{
    if (ost_stringForKey(properties, u"cornerRadius"_s) == u"circle"_s) {
        m_cornerStyle = CornerStyle::Circle;
        m_cornerRadius = 0;
        return;
    }
    m_cornerStyle = CornerStyle::Radius;
    m_cornerRadius = ost_stringNumberForKey(properties, u"cornerRadius"_s).value_or(0);
}

void OSTBackgroundView::readFill(const QVariantMap &properties)
{
    const auto gradient = ost_dictionaryForKey(properties, u"backgroundGradient"_s);
    if (!gradient) {
        m_fillColor = colorForKey(properties, u"backgroundColor"_s);
        m_gradient.reset();
        return;
    }
    m_fillColor = colorForKey(*gradient, u"baseColor"_s);

    Gradient fill;
    for (const QVariant &entry : ost_arrayForKey(*gradient, u"colors"_s).value_or(QVariantList()))
        fill.colors.append(colorFromEntry(entry));
    fill.radius = ost_finiteDouble(ost_numberForKey(*gradient, u"radius"_s));
    if (!fill.radius && ost_stringForKey(*gradient, u"style"_s) == u"horizontal"_s)
        fill.direction = GradientDirection::Horizontal;
    m_gradient = fill;
}

qreal OSTBackgroundView::cornerRadius() const
{
    const qreal requested = m_cornerStyle == CornerStyle::Circle ? height() / 2.0 : m_cornerRadius;
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
    if (m_gradient && !m_gradient->colors.isEmpty())
        paintGradient(painter, shape);
    else if (!ost_isClear(m_fillColor))
        painter.fillPath(shape, m_fillColor);
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
    const bool rounded = m_cornerStyle == CornerStyle::Circle || m_cornerRadius > 0;
    const bool needsClipping = hasChildren && (m_borderWidth > 0 || rounded);
    if (needsClipping == clipsChildren())
        return;
    setGraphicsEffect(needsClipping ? new OSTRoundedClipEffect(this) : nullptr);
}

void OSTBackgroundView::paintGradient(QPainter &painter, const QPainterPath &shape) const
{
    // The base colour shows only through translucent stops. Laying every stop over it and
    // filling once keeps the base colour from bleeding out along the antialiased outline.
    QGradientStops stops = gradientStops(m_gradient->colors);
    for (auto &stop : stops)
        stop.second = sourceOver(stop.second, m_fillColor);
    const QRectF bounds(rect());

    if (m_gradient->radius) {
        // Beyond the end circle the last colour goes on (pad spread); a circle without area
        // leaves only that colour.
        if (*m_gradient->radius <= 0) {
            painter.fillPath(shape, stops.constLast().second);
            return;
        }
        QRadialGradient radial(bounds.center(), *m_gradient->radius);
        radial.setStops(stops);
        painter.fillPath(shape, radial);
        return;
    }

    const bool horizontal = m_gradient->direction == GradientDirection::Horizontal;
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
    return u"%1 %2"_s.arg(m_borderWidth).arg(m_borderColor.rgba(), 0, 16);
}

void OSTBackgroundView::paintBorder(QPainter &painter) const
{
    if (m_borderWidth <= 0)
        return;
    // The border lies inside the box along its rounded outline; a border wider than half the
    // box fills it.
    const QRectF bounds(rect());
    const qreal radius = cornerRadius();
    QPainterPath band;
    band.addRoundedRect(bounds, radius, radius);
    const QRectF inner = bounds.adjusted(m_borderWidth, m_borderWidth, -m_borderWidth, -m_borderWidth);
    if (inner.isValid()) {
        const qreal innerRadius = std::max<qreal>(0, radius - m_borderWidth);
        band.addRoundedRect(inner, innerRadius, innerRadius);
    }
    painter.fillPath(band, m_borderColor);
}

} // namespace ostrel
