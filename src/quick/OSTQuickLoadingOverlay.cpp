#include "quick/OSTQuickLoadingOverlay.h"

#include "paint/OSTLoadingIndicatorPainter.h"
#include "quick/OSTQuickAccessibility.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QQuickWindow>
#include <QVariantAnimation>

#include <algorithm>
#include <limits>

namespace ostrel {

OSTQuickLoadingOverlay::OSTQuickLoadingOverlay(QQuickItem *screen)
    : QQuickPaintedItem(screen), m_fade(new QPropertyAnimation(this, "presence", this)),
      m_spin(new QVariantAnimation(this))
{
    setVisible(false);
    setZ(std::numeric_limits<int>::max());
    setAcceptedMouseButtons(Qt::AllButtons);
    m_fade->setDuration(fadeMilliseconds);
    m_fade->setEasingCurve(QEasingCurve::OutCubic);
    m_spin->setStartValue(0.0);
    m_spin->setEndValue(360.0);
    m_spin->setDuration(OSTLoadingIndicatorPainter::turnMilliseconds);
    m_spin->setLoopCount(-1);
    connect(m_spin, &QVariantAnimation::valueChanged, this, [this](const QVariant &angle) {
        m_spinnerAngle = angle.toReal();
        update();
    });
    OSTQuickAccessibility::describe(*this, QAccessible::Animation, tr("Loading"));
    followScreenSize();
    connect(screen, &QQuickItem::widthChanged, this, &OSTQuickLoadingOverlay::followScreenSize);
    connect(screen, &QQuickItem::heightChanged, this, &OSTQuickLoadingOverlay::followScreenSize);
}

void OSTQuickLoadingOverlay::followScreenSize()
{
    setSize(parentItem()->size());
}

void OSTQuickLoadingOverlay::present()
{
    m_presented = true;
    m_focusBeforePresenting = window() ? window()->activeFocusItem() : nullptr;
    m_fade->stop();
    setPresence(0);
    setVisible(true);
    setFocus(true);
    forceActiveFocus();
    m_spin->start();
    m_fade->setStartValue(0.0);
    m_fade->setEndValue(1.0);
    m_fade->start();
}

void OSTQuickLoadingOverlay::dismiss()
{
    if (!m_presented)
        return;
    m_presented = false;
    m_fade->stop();
    m_fade->setStartValue(m_presence);
    m_fade->setEndValue(0.0);
    disconnect(m_fade, &QPropertyAnimation::finished, this, nullptr);
    connect(m_fade, &QPropertyAnimation::finished, this, &OSTQuickLoadingOverlay::finishDismissal,
            Qt::SingleShotConnection);
    m_fade->start();
}

void OSTQuickLoadingOverlay::finishDismissal()
{
    if (m_presented)
        return; // presented again while fading out
    m_spin->stop();
    setVisible(false);
    if (m_focusBeforePresenting)
        m_focusBeforePresenting->forceActiveFocus();
}

void OSTQuickLoadingOverlay::setPresence(qreal presence)
{
    m_presence = std::clamp<qreal>(presence, 0, 1);
    update();
}

void OSTQuickLoadingOverlay::paint(QPainter *painter)
{
    OSTLoadingIndicatorPainter::paint(*painter, size(), m_presence, m_spinnerAngle);
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
