#include "widgets/OSTSwitchControl.h"

#include "widgets/OSTPaintedLayerCache.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QColor defaultOnTint(52, 199, 89);
const QColor defaultTint(229, 229, 234);
const QColor defaultThumbTint(Qt::white);
constexpr int slideMilliseconds = 200;
constexpr qreal thumbInset = 2;

} // namespace

OSTSwitchControl::OSTSwitchControl(QWidget *parent)
    : QAbstractButton(parent),
      m_slide(new QPropertyAnimation(this, "thumbPosition", this)),
      m_onTint(defaultOnTint),
      m_tint(defaultTint),
      m_thumbTint(defaultThumbTint)
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
    m_onTint = color.isValid() ? color : defaultOnTint;
    update();
}

void OSTSwitchControl::setTintColor(const QColor &color)
{
    m_tint = color.isValid() ? color : defaultTint;
    update();
}

void OSTSwitchControl::setThumbTintColor(const QColor &color)
{
    m_thumbTint = color.isValid() ? color : defaultThumbTint;
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
        paintSwitch(painter);
        return;
    }
    const QString key = u"switch %1 %2 %3 %4 %5"_s.arg(m_tint.rgba(), 0, 16)
                            .arg(m_onTint.rgba(), 0, 16)
                            .arg(m_thumbTint.rgba(), 0, 16)
                            .arg(m_thumbPosition)
                            .arg(hasFocus() ? palette().color(QPalette::Highlight).rgba() : 0, 0, 16);
    OSTPaintedLayerCache::draw(painter, key, size(), [this](QPainter &layerPainter) {
        layerPainter.setRenderHint(QPainter::Antialiasing);
        paintSwitch(layerPainter);
    });
}

void OSTSwitchControl::paintSwitch(QPainter &painter) const
{
    const QRectF track = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const qreal radius = track.height() / 2;

    // The off outline shows around a track that fills with the on colour as the thumb slides.
    painter.setPen(QPen(m_tint, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(track, radius, radius);
    QColor fill = m_onTint;
    fill.setAlphaF(fill.alphaF() * m_thumbPosition);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    const qreal diameter = track.height() - 2 * thumbInset;
    const qreal travel = track.width() - 2 * thumbInset - diameter;
    const QRectF thumb(track.left() + thumbInset + travel * m_thumbPosition, track.top() + thumbInset,
                       diameter, diameter);
    painter.setBrush(QColor(0, 0, 0, 40));
    painter.drawEllipse(thumb.translated(0, 1));
    painter.setBrush(m_thumbTint);
    painter.drawEllipse(thumb);
    if (hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawRoundedRect(track.adjusted(1, 1, -1, -1), radius - 1, radius - 1);
    }
}

} // namespace ostrel
