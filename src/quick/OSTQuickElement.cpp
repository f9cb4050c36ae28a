#include "quick/OSTQuickElement.h"

#include "quick/OSTQuickShadow.h"
#include "screen/OSTElementDescription.h"

namespace ostrel {

OSTQuickElement::OSTQuickElement(const QRect &frame, const OSTElementDescription &description, QQuickItem *parent)
    : QQuickPaintedItem(parent)
{
    setObjectName(description.key());
    setAntialiasing(true);
    setFrame(frame);
    customize(description);
}

OSTQuickElement::~OSTQuickElement() = default;

void OSTQuickElement::customize(const OSTElementDescription &description)
{
    setOpacity(description.alpha());
    m_boxPainter = OSTBoxPainter(description.box());
    castShadow(description.objectShadow());
    updateContainer();
    update();
}

void OSTQuickElement::setFrame(const QRect &frame)
{
    setPosition(frame.topLeft());
    setSize(frame.size());
}

void OSTQuickElement::castShadow(const std::optional<OSTShadow> &shadow)
{
    if (m_shadow && (!shadow || m_shadow->shadow() != *shadow))
        delete m_shadow;
    if (shadow && !m_shadow)
        m_shadow = new OSTQuickShadow(*shadow, this);
    if (m_shadow)
        m_shadow->setCornerRadius(m_boxPainter.cornerRadius(size()));
}

QQuickItem *OSTQuickElement::container()
{
    if (!m_container) {
        m_container = new QQuickItem(this);
        m_container->setSize(size());
        m_border = new OSTQuickBoxBorder(m_container);
        updateContainer();
    }
    return m_container;
}

void OSTQuickElement::updateContainer()
{
    // Members stay inside a bordered or rounded box; a plain one lets them show beyond it.
    if (!m_container)
        return;
    m_container->setClip(m_boxPainter.hasBorder() || m_boxPainter.isRounded());
    m_border->setBoxPainter(m_boxPainter);
    update();
}

void OSTQuickElement::paint(QPainter *painter)
{
    // With members, the border is drawn above them.
    m_boxPainter.paint(*painter, size(), m_container ? OSTBoxPainter::Border::Omitted : OSTBoxPainter::Border::Included);
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
    if (m_shadow)
        m_shadow->setCornerRadius(m_boxPainter.cornerRadius(newGeometry.size()));
}

} // namespace ostrel
