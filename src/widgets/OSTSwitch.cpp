#include "widgets/OSTSwitch.h"

#include "model/OSTValidationItemModel.h"
#include "widgets/OSTBackgroundView.h"
#include "widgets/OSTSwitchControl.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTSwitch::OSTSwitch(const QRect &frame, const OSTSwitchDescription &description, QWidget *parent)
    : OSTView(frameInBox(frame), description, Styling::InSubclassConstructor, parent),
      m_internalSwitch(new OSTSwitchControl(container()))
{
    m_internalSwitch->setGeometry(container()->rect());
    m_internalSwitch->setAccessibleName(description.accessibilityLabel().value_or(description.key()));
    setFocusProxy(m_internalSwitch);
    connect(m_internalSwitch, &OSTSwitchControl::toggled, this, &OSTSwitch::userChangedValue);
    customize(description);
}

QRect OSTSwitch::frameInBox(const QRect &box)
{
    QRect natural(QPoint(), OSTSwitchControl::naturalSize());
    natural.moveCenter(box.center());
    return natural;
}

void OSTSwitch::customize(const OSTSwitchDescription &description)
{
    OSTView::customize(description);
    m_internalSwitch->setOn(description.isInitiallyOn(), OSTSwitchControl::Animation::Immediate);
    m_internalSwitch->setOnTintColor(description.onTintColor());
    m_internalSwitch->setTintColor(description.tintColor());
    m_internalSwitch->setThumbTintColor(description.thumbTintColor());
}

bool OSTSwitch::isOn() const
{
    return m_internalSwitch->isChecked();
}

QVariant OSTSwitch::value() const
{
    return isOn();
}

void OSTSwitch::setValue(const QVariant &value)
{
    if (value.canConvert<bool>())
        m_internalSwitch->setOn(value.toBool(), OSTSwitchControl::Animation::Immediate);
}

void OSTSwitch::modelDidChange()
{
    updateModelValidity();
}

void OSTSwitch::userChangedValue()
{
    updateModelValidity();
    emit tapped();
}

void OSTSwitch::updateModelValidity()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    if (!itemModel)
        return;
    itemModel->setValid(itemModel->isOptional() || isOn());
    itemModel->valueChanged();
}

} // namespace ostrel
