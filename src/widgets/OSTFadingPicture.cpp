#include "widgets/OSTFadingPicture.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace ostrel {

OSTFadingPicture::OSTFadingPicture(QWidget *widget, qreal opacity)
    : QWidget(widget->parentWidget()), m_picture(widget->grab()), m_opacity(std::clamp<qreal>(opacity, 0, 1))
{
    // The picture stands in for the widget while that is hidden, so it takes what the widget
    // would: a click or a key during the fade must not reach the host underneath.
    setFocusPolicy(Qt::StrongFocus);
    if (widget->isWindow()) {
        setWindowFlags(widget->windowFlags());
        setAttribute(Qt::WA_TranslucentBackground);
    }
    setGeometry(widget->geometry());
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
}

bool OSTFadingPicture::event(QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
        event->accept();
        return true;
    default:
        return QWidget::event(event);
    }
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
