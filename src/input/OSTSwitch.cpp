#include "input/OSTSwitch.h"

#include "core/OSTDictionaryHelpers.h"
#include "input/OSTValidationItemModel.h"
#include "render/OSTBackgroundView.h"
#include "render/OSTSwitchControl.h"
#include "screen/OSTColorHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTSwitch::OSTSwitch(const QRect &frame, const QVariantMap &properties, const QString &name,
                     QWidget *parent)
    : OSTView(frameInBox(frame), properties, Styling::InSubclassConstructor, parent),
      m_internalSwitch(new OSTSwitchControl(container()))
{
    m_internalSwitch->setGeometry(container()->rect());
    m_internalSwitch->setAccessibleName(ost_stringForKey(properties, u"accessibilityLabel"_s).value_or(name));
    setFocusProxy(m_internalSwitch);
    connect(m_internalSwitch, &OSTSwitchControl::toggled, this, &OSTSwitch::userChangedValue);
    customizeWithProperties(properties);
}

QRect OSTSwitch::frameInBox(const QRect &box)
{
    QRect natural(QPoint(), OSTSwitchControl::naturalSize());
    natural.moveCenter(box.center());
    return natural;
}

void OSTSwitch::customizeWithProperties(const QVariantMap &properties)
{
    OSTView::customizeWithProperties(properties);
    m_internalSwitch->setOn(ost_stringForKey(properties, u"defaultState"_s) == u"pressed"_s,
                            OSTSwitchControl::Animation::Immediate);
    m_internalSwitch->setOnTintColor(ost_colorForKey(properties, u"onTintColor"_s));
    m_internalSwitch->setTintColor(ost_colorForKey(properties, u"tintColor"_s));
    m_internalSwitch->setThumbTintColor(ost_colorForKey(properties, u"thumbTintColor"_s));
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
