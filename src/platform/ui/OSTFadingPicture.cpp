#include "platform/ui/OSTFadingPicture.h"

#include <QPainter>

#include <algorithm>

namespace ostrel {

OSTFadingPicture::OSTFadingPicture(QWidget *widget, qreal opacity)
    : QWidget(widget->parentWidget()), m_picture(widget->grab()), m_opacity(std::clamp<qreal>(opacity, 0, 1))
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    if (widget->isWindow()) {
        setWindowFlags(widget->windowFlags());
        setAttribute(Qt::WA_TranslucentBackground);
    }
    setGeometry(widget->geometry());
    show();
    raise();
}

void OSTFadingPicture::setOpacity(qreal opacity)
{
    m_opacity = std::clamp<qreal>(opacity, 0, 1);
    update();
}

void OSTFadingPicture::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setOpacity(m_opacity);
    painter.drawPixmap(rect(), m_picture);
}

} // namespace ostrel
