#include "widgets/OSTLoadingOverlay.h"

#include "paint/OSTLoadingIndicatorAnimation.h"

#include <QEvent>
#include <QKeyEvent>
#include <QPainter>

namespace ostrel {

OSTLoadingOverlay::OSTLoadingOverlay(QWidget *parent)
    : QWidget(parent), m_animation(new OSTLoadingIndicatorAnimation(this))
{
    hide();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Loading"));
    connect(m_animation, &OSTLoadingIndicatorAnimation::changed, this, [this] { update(); });
    connect(m_animation, &OSTLoadingIndicatorAnimation::faded, this, &OSTLoadingOverlay::finishDismissal);
}

bool OSTLoadingOverlay::isPresented() const
{
    return m_animation->isShown();
}

qreal OSTLoadingOverlay::presence() const
{
    return m_animation->presence();
}

void OSTLoadingOverlay::presentOnView(QWidget *view)
{
    if (!view)
        return;
    if (parentWidget() != view) {
        if (parentWidget())
            parentWidget()->removeEventFilter(this);
        setParent(view);
        view->installEventFilter(this);
    }
    m_focusBeforePresenting = view->focusWidget();
    setGeometry(view->rect());
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
    m_animation->show();
}

void OSTLoadingOverlay::dismiss()
{
    m_animation->hide();
}

void OSTLoadingOverlay::finishDismissal()
{
    hide();
    if (m_focusBeforePresenting)
        m_focusBeforePresenting->setFocus(Qt::OtherFocusReason);
}

bool OSTLoadingOverlay::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Resize)
        setGeometry(parentWidget()->rect());
    return QWidget::eventFilter(watched, event);
}

void OSTLoadingOverlay::mousePressEvent(QMouseEvent *event)
{
    event->accept(); // the covered view must not see it
}

void OSTLoadingOverlay::keyPressEvent(QKeyEvent *event)
{
    event->accept();
}

bool OSTLoadingOverlay::focusNextPrevChild(bool)
{
    return true; // Tab stays here while the view is covered
}

void OSTLoadingOverlay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_animation->paint(painter, size());
}

} // namespace ostrel
