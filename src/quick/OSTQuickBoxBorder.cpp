#include "quick/OSTQuickBoxBorder.h"

#include <limits>

namespace ostrel {

OSTQuickBoxBorder::OSTQuickBoxBorder(QQuickItem *container) : QQuickPaintedItem(container)
{
    setZ(std::numeric_limits<int>::max());
    setAntialiasing(true);
    followContainer();
    connect(container, &QQuickItem::widthChanged, this, &OSTQuickBoxBorder::followContainer);
    connect(container, &QQuickItem::heightChanged, this, &OSTQuickBoxBorder::followContainer);
}

void OSTQuickBoxBorder::setBoxPainter(const OSTBoxPainter &boxPainter)
{
    m_boxPainter = boxPainter;
    update();
}

void OSTQuickBoxBorder::followContainer()
{
    setSize(parentItem()->size());
}

void OSTQuickBoxBorder::paint(QPainter *painter)
{
    m_boxPainter.paintBorder(*painter, size());
}

} // namespace ostrel
