#include "quick/OSTQuickLaunchScreen.h"

#include "platform/OSTBundle.h"

#include <QPainter>

namespace ostrel {

OSTQuickLaunchScreen::OSTQuickLaunchScreen(QSizeF area, double devicePixelRatio, QQuickItem *parent)
    : QQuickPaintedItem(parent), m_image(OSTBundle::mainBundle()->launchImage(area, devicePixelRatio))
{
    setSize(area);
    setOpaquePainting(true);
}

void OSTQuickLaunchScreen::paint(QPainter *painter)
{
    const QRectF bounds(0, 0, width(), height());
    painter->fillRect(bounds, Qt::black);
    if (!m_image.isNull())
        painter->drawImage(bounds, m_image);
}

} // namespace ostrel
