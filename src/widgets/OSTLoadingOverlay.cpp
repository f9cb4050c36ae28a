#include "widgets/OSTLoadingOverlay.h"

#include "paint/OSTLoadingIndicatorPainter.h"

#include <QEasingCurve>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QVariantAnimation>

namespace ostrel {

OSTLoadingOverlay::OSTLoadingOverlay(QWidget *parent)
    : QWidget(parent),
      m_fade(new QPropertyAnimation(this, "presence", this)),
      m_spin(new QVariantAnimation(this))
{
    hide();
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Loading"));
    m_fade->setDuration(fadeMilliseconds);
    m_fade->setEasingCurve(QEasingCurve::OutCubic);
    m_spin->setStartValue(0.0);
    m_spin->setEndValue(360.0);
    m_spin->setDuration(OSTLoadingIndicatorPainter::turnMilliseconds);
    m_spin->setLoopCount(-1);
    connect(m_spin, &QVariantAnimation::valueChanged, this, [this](const QVariant &angle) {
        m_indicatorAngle = angle.toReal();
        update();
    });
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
    m_presented = true;
    m_focusBeforePresenting = view->focusWidget();
    setGeometry(view->rect());
    m_fade->stop();
    setPresence(0);
    show();
    raise();
    setFocus(Qt::OtherFocusReason);
    m_spin->start();
    m_fade->setStartValue(0.0);
    m_fade->setEndValue(1.0);
    m_fade->start();
}

void OSTLoadingOverlay::dismiss()
{
    if (!m_presented)
        return;
    m_presented = false;
    m_fade->stop();
    m_fade->setStartValue(m_presence);
    m_fade->setEndValue(0.0);
    disconnect(m_fade, &QPropertyAnimation::finished, this, nullptr);
    connect(m_fade, &QPropertyAnimation::finished, this, &OSTLoadingOverlay::finishDismissal,
            Qt::SingleShotConnection);
    m_fade->start();
}

void OSTLoadingOverlay::finishDismissal()
{
    if (m_presented)
        return; // presented again while fading out
    m_spin->stop();
    hide();
    if (m_focusBeforePresenting)
        m_focusBeforePresenting->setFocus(Qt::OtherFocusReason);
}

void OSTLoadingOverlay::setPresence(qreal presence)
{
    m_presence = std::clamp<qreal>(presence, 0, 1);
    update();
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
    OSTLoadingIndicatorPainter::paint(painter, size(), m_presence, m_indicatorAngle);
}

} // namespace ostrel
