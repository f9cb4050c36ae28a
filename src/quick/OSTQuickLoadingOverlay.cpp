#include "quick/OSTQuickLoadingOverlay.h"

#include "paint/OSTLoadingIndicatorAnimation.h"
#include "quick/OSTQuickAccessibility.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QQuickWindow>

#include <limits>

namespace ostrel {

OSTQuickLoadingOverlay::OSTQuickLoadingOverlay(QQuickItem *screen)
    : QQuickPaintedItem(screen), m_animation(new OSTLoadingIndicatorAnimation(this))
{
    setVisible(false);
    setZ(std::numeric_limits<int>::max());
    setAcceptedMouseButtons(Qt::AllButtons);
    connect(m_animation, &OSTLoadingIndicatorAnimation::changed, this, [this] { update(); });
    connect(m_animation, &OSTLoadingIndicatorAnimation::faded, this, &OSTQuickLoadingOverlay::finishDismissal);
    OSTQuickAccessibility::describe(*this, QAccessible::Animation, tr("Loading"));
    followScreenSize();
    connect(screen, &QQuickItem::widthChanged, this, &OSTQuickLoadingOverlay::followScreenSize);
    connect(screen, &QQuickItem::heightChanged, this, &OSTQuickLoadingOverlay::followScreenSize);
}

void OSTQuickLoadingOverlay::followScreenSize()
{
    setSize(parentItem()->size());
}

bool OSTQuickLoadingOverlay::isPresented() const
{
    return m_animation->isShown();
}

qreal OSTQuickLoadingOverlay::presence() const
{
    return m_animation->presence();
}

QPropertyAnimation *OSTQuickLoadingOverlay::fade() const
{
    return m_animation->fade();
}

void OSTQuickLoadingOverlay::present()
{
    m_focusBeforePresenting = window() ? window()->activeFocusItem() : nullptr;
    setVisible(true);
    setFocus(true);
    forceActiveFocus();
    m_animation->show();
}

void OSTQuickLoadingOverlay::dismiss()
{
    m_animation->hide();
}

void OSTQuickLoadingOverlay::finishDismissal()
{
    setVisible(false);
    if (m_focusBeforePresenting)
        m_focusBeforePresenting->forceActiveFocus();
}

void OSTQuickLoadingOverlay::paint(QPainter *painter)
{
    m_animation->paint(*painter, size());
}

void OSTQuickLoadingOverlay::mousePressEvent(QMouseEvent *event)
{
    event->accept(); // the covered screen must not see it
}

void OSTQuickLoadingOverlay::wheelEvent(QWheelEvent *event)
{
    event->accept();
}

void OSTQuickLoadingOverlay::keyPressEvent(QKeyEvent *event)
{
    // Tab and return stay here while the screen is covered; Escape goes on to the experience, which
    // closes while it waits.
    event->setAccepted(event->key() != Qt::Key_Escape);
}

} // namespace ostrel
