#include "quick/OSTQuickPaintedLayer.h"

namespace ostrel {

OSTQuickPaintedLayer::OSTQuickPaintedLayer(Painting painting, QQuickItem *parent)
    : QQuickPaintedItem(parent), m_painting(std::move(painting))
{
    setAntialiasing(true);
}

void OSTQuickPaintedLayer::paint(QPainter *painter)
{
    m_painting(*painter);
}

} // namespace ostrel
