#include "quick/OSTQuickSwitch.h"

#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickAccessibility.h"
#include "screen/OSTSwitchDescription.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPalette>
#include <QMouseEvent>
#include <QPropertyAnimation>

#include <algorithm>

namespace ostrel {

namespace {

// A phone switch's size, which the switch takes whatever its element's box.
constexpr QSize naturalSize(51, 31);
constexpr int slideMilliseconds = 200;

} // namespace

OSTQuickSwitch::OSTQuickSwitch(const QRect &frame, const OSTSwitchDescription &description, QQuickItem *parent)
    : OSTQuickElement(frameInBox(frame), description, parent),
      m_slide(new QPropertyAnimation(this, "thumbPosition", this))
{
    m_switchPainter.setOnTintColor(description.onTintColor());
    m_switchPainter.setTintColor(description.tintColor());
    m_switchPainter.setThumbTintColor(description.thumbTintColor());
    m_slide->setDuration(slideMilliseconds);
    m_slide->setEasingCurve(QEasingCurve::InOutQuad);
    setAcceptedMouseButtons(Qt::LeftButton);
    setActiveFocusOnTab(true);
    setOn(description.isInitiallyOn(), Animation::Immediate);
    OSTQuickAccessibility::describe(*this, QAccessible::CheckBox,
                                    description.accessibilityLabel().value_or(description.key()));
}

QRect OSTQuickSwitch::frameInBox(const QRect &box)
{
    QRect natural(QPoint(), naturalSize);
    natural.moveCenter(box.center());
    return natural;
}

void OSTQuickSwitch::setThumbPosition(qreal position)
{
    m_thumbPosition = std::clamp<qreal>(position, 0, 1);
    update();
}

void OSTQuickSwitch::setOn(bool on, Animation animation)
{
    m_on = on;
    m_slide->stop();
    if (animation == Animation::Immediate) {
        setThumbPosition(on ? 1 : 0);
        return;
    }
    m_slide->setStartValue(m_thumbPosition);
    m_slide->setEndValue(on ? 1.0 : 0.0);
    m_slide->start();
}

void OSTQuickSwitch::toggle()
{
    setOn(!m_on, Animation::Animated);
    updateModelValidity();
    emit tapped();
}

QVariant OSTQuickSwitch::value() const
{
    return m_on;
}

void OSTQuickSwitch::setValue(const QVariant &value)
{
    if (value.canConvert<bool>())
        setOn(value.toBool(), Animation::Immediate);
}

void OSTQuickSwitch::modelDidChange()
{
    updateModelValidity();
}

void OSTQuickSwitch::updateModelValidity()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (!itemModel)
        return;
    itemModel->setValid(itemModel->isOptional() || m_on);
    itemModel->valueChanged();
}

void OSTQuickSwitch::paintContent(QPainter &painter)
{
    const QColor focusColor = hasActiveFocus() ? QGuiApplication::palette().color(QPalette::Highlight) : QColor();
    m_switchPainter.paint(painter, size(), m_thumbPosition, focusColor);
}

void OSTQuickSwitch::itemChange(ItemChange change, const ItemChangeData &value)
{
    OSTQuickElement::itemChange(change, value);
    if (change == ItemActiveFocusHasChanged)
        update();
}

void OSTQuickSwitch::mousePressEvent(QMouseEvent *event)
{
    event->accept();
}

void OSTQuickSwitch::mouseReleaseEvent(QMouseEvent *event)
{
    if (contains(event->position()))
        toggle();
}

void OSTQuickSwitch::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Space && event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        OSTQuickElement::keyPressEvent(event);
        return;
    }
    toggle();
}

} // namespace ostrel
