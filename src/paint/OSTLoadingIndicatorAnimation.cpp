#include "paint/OSTLoadingIndicatorAnimation.h"

#include "paint/OSTLoadingIndicatorPainter.h"

#include <QEasingCurve>
#include <QPropertyAnimation>
#include <QVariantAnimation>

#include <algorithm>

namespace ostrel {

OSTLoadingIndicatorAnimation::OSTLoadingIndicatorAnimation(QObject *parent)
    : QObject(parent), m_fade(new QPropertyAnimation(this, "presence", this)), m_spin(new QVariantAnimation(this))
{
    m_fade->setDuration(fadeMilliseconds);
    m_fade->setEasingCurve(QEasingCurve::OutCubic);
    connect(m_fade, &QPropertyAnimation::finished, this, &OSTLoadingIndicatorAnimation::finishHiding);
    m_spin->setStartValue(0.0);
    m_spin->setEndValue(360.0);
    m_spin->setDuration(OSTLoadingIndicatorPainter::turnMilliseconds);
    m_spin->setLoopCount(-1);
    connect(m_spin, &QVariantAnimation::valueChanged, this, [this](const QVariant &angle) {
        m_angle = angle.toReal();
        Q_EMIT changed();
    });
}

void OSTLoadingIndicatorAnimation::show()
{
    m_shown = true;
    m_fade->stop();
    setPresence(0);
    m_spin->start();
    m_fade->setStartValue(0.0);
    m_fade->setEndValue(1.0);
    m_fade->start();
}

void OSTLoadingIndicatorAnimation::hide()
{
    if (!m_shown)
        return;
    m_shown = false;
    m_fade->stop();
    m_fade->setStartValue(m_presence);
    m_fade->setEndValue(0.0);
    m_fade->start();
}

void OSTLoadingIndicatorAnimation::finishHiding()
{
    if (m_shown)
        return; // the fade in ended, or shown again while fading out
    m_spin->stop();
    Q_EMIT faded();
}

void OSTLoadingIndicatorAnimation::setPresence(qreal presence)
{
    m_presence = std::clamp<qreal>(presence, 0, 1);
    Q_EMIT changed();
}

void OSTLoadingIndicatorAnimation::paint(QPainter &painter, const QSizeF &size) const
{
    OSTLoadingIndicatorPainter::paint(painter, size, m_presence, m_angle);
}

} // namespace ostrel
