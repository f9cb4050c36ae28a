#include "widgets/OSTSwitchControl.h"

#include "paint/OSTPaintedLayerCache.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPropertyAnimation>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr int slideMilliseconds = 200;

} // namespace

OSTSwitchControl::OSTSwitchControl(QWidget *parent)
    : QAbstractButton(parent),
      m_slide(new QPropertyAnimation(this, "thumbPosition", this))
{
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    m_slide->setDuration(slideMilliseconds);
    m_slide->setEasingCurve(QEasingCurve::InOutQuad);
    resize(naturalSize());
}

void OSTSwitchControl::setOn(bool on, Animation animation)
{
    if (on == isChecked())
        return;
    const QSignalBlocker silent(this); // only the user's own taps report a change
    setChecked(on);
    slideThumb(animation);
}

void OSTSwitchControl::checkStateSet()
{
    slideThumb(Animation::Immediate);
}

void OSTSwitchControl::nextCheckState()
{
    QAbstractButton::nextCheckState();
    slideThumb(Animation::Animated);
}

void OSTSwitchControl::slideThumb(Animation animation)
{
    const qreal target = isChecked() ? 1 : 0;
    m_slide->stop();
    if (animation == Animation::Immediate) {
        setThumbPosition(target);
        return;
    }
    m_slide->setStartValue(m_thumbPosition);
    m_slide->setEndValue(target);
    m_slide->start();
}

void OSTSwitchControl::setThumbPosition(qreal position)
{
    m_thumbPosition = std::clamp<qreal>(position, 0, 1);
    update();
}

void OSTSwitchControl::setOnTintColor(const QColor &color)
{
    m_switchPainter.setOnTintColor(color);
    update();
}

void OSTSwitchControl::setTintColor(const QColor &color)
{
    m_switchPainter.setTintColor(color);
    update();
}

void OSTSwitchControl::setThumbTintColor(const QColor &color)
{
    m_switchPainter.setThumbTintColor(color);
    update();
}

bool OSTSwitchControl::hitButton(const QPoint &position) const
{
    return rect().contains(position);
}

void OSTSwitchControl::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
        click();
        return;
    }
    QAbstractButton::keyPressEvent(event);
}

void OSTSwitchControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    // A switch at rest looks like every other switch of its size and colours; while the thumb
    // slides, each frame is new.
    if (m_slide->state() == QAbstractAnimation::Running) {
        m_switchPainter.paint(painter, size(), m_thumbPosition, focusColor());
        return;
    }
    OSTPaintedLayerCache::draw(painter, m_switchPainter.key(m_thumbPosition, focusColor()), size(),
                               [this](QPainter &layerPainter) {
                                   m_switchPainter.paint(layerPainter, size(), m_thumbPosition, focusColor());
                               });
}

QColor OSTSwitchControl::focusColor() const
{
    return hasFocus() ? palette().color(QPalette::Highlight) : QColor();
}

} // namespace ostrel
