#include "widgets/OSTLoadingOverlay.h"

#include <QEasingCurve>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QPropertyAnimation>
#include <QVariantAnimation>

namespace ostrel {

namespace {

constexpr qreal dimmingAlpha = 0.75;
constexpr int indicatorDiameter = 37;
constexpr int indicatorSpokes = 12;
constexpr int indicatorTurnMilliseconds = 1000;

} // namespace

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
    m_spin->setDuration(indicatorTurnMilliseconds);
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
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(m_presence);
    painter.fillRect(rect(), QColor::fromRgbF(0, 0, 0, dimmingAlpha));
    paintIndicator(painter);
}

void OSTLoadingOverlay::paintIndicator(QPainter &painter) const
{
    // White spokes that fade behind the leading one, turning once a second.
    painter.save();
    painter.translate(QRectF(rect()).center());
    painter.rotate(m_indicatorAngle);
    const qreal outer = indicatorDiameter / 2.0;
    QPen pen(Qt::white, 3.5, Qt::SolidLine, Qt::RoundCap);
    for (int spoke = 0; spoke < indicatorSpokes; ++spoke) {
        QColor color = Qt::white;
        color.setAlphaF(0.25 + 0.75 * spoke / (indicatorSpokes - 1));
        pen.setColor(color);
        painter.setPen(pen);
        painter.drawLine(QPointF(0, -outer * 0.45), QPointF(0, -outer));
        painter.rotate(360.0 / indicatorSpokes);
    }
    painter.restore();
}

} // namespace ostrel
