#include "quick/OSTQuickShadow.h"

namespace ostrel {

OSTQuickShadow::OSTQuickShadow(const OSTShadow &shadow, QQuickItem *caster)
    : QQuickPaintedItem(caster), m_shadowPainter(shadow)
{
    setZ(-1);
    setAntialiasing(true);
    followCaster();
    connect(caster, &QQuickItem::widthChanged, this, &OSTQuickShadow::followCaster);
    connect(caster, &QQuickItem::heightChanged, this, &OSTQuickShadow::followCaster);
}

void OSTQuickShadow::setCornerRadius(qreal radius)
{
    m_cornerRadius = radius;
    update();
}

void OSTQuickShadow::followCaster()
{
    const QMarginsF margins = m_shadowPainter.margins();
    setPosition(QPointF(-margins.left(), -margins.top()));
    setSize(parentItem()->size().grownBy(margins));
    update();
}

void OSTQuickShadow::paint(QPainter *painter)
{
    const QMarginsF margins = m_shadowPainter.margins();
    const QRectF casterFrame(QPointF(margins.left(), margins.top()), parentItem()->size());
    m_shadowPainter.paint(*painter, casterFrame, m_cornerRadius);
}

} // namespace ostrel
