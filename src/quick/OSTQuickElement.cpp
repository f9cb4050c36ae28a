#include "quick/OSTQuickElement.h"

#include "screen/OSTElementDescription.h"

#include <QPainter>

namespace ostrel {

OSTQuickElement::OSTQuickElement(const QRect &frame, const OSTElementDescription &description, QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setObjectName(description.key());
    setAntialiasing(true);
    setPosition(frame.topLeft());
    setSize(frame.size());
    customize(description);
}

OSTQuickElement::~OSTQuickElement() = default;

void OSTQuickElement::customize(const OSTElementDescription &description)
{
    setOpacity(description.alpha());
    m_boxLook = description.box();
    m_objectShadow = description.objectShadow();
    updateContainer();
    update();
}

QQuickItem *OSTQuickElement::container()
{
    if (!m_container) {
        m_container = new QQuickItem(this);
        m_container->setSize(size());
        updateContainer();
    }
    return m_container;
}

void OSTQuickElement::updateContainer()
{
    if (!m_container)
        return;
    // Members stay inside a bordered or rounded box; a plain one lets them show beyond it.
    const bool rounded = m_boxLook.cornerStyle == OSTBoxLook::CornerStyle::Circle || m_boxLook.cornerRadius > 0;
    m_container->setClip(rounded || m_boxLook.borderWidth > 0);
}

void OSTQuickElement::paint(QPainter *painter)
{
    paintContent(*painter);
}

void OSTQuickElement::paintContent(QPainter &)
{
}

void OSTQuickElement::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    if (m_container)
        m_container->setSize(newGeometry.size());
}

} // namespace ostrel
