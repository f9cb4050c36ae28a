#include "model/OSTToggleItem.h"

#include "model/OSTValidationItemModel.h"

namespace ostrel {

QVariant OSTToggleItem::value() const
{
    return isToggleButton() ? QVariant(isSelected()) : QVariant();
}

void OSTToggleItem::setValue(const QVariant &value)
{
    if (!value.canConvert<bool>() || !value.isValid())
        return;
    setSelected(value.toBool());
    if (const auto itemModel = model())
        itemModel->valueChanged();
}

void OSTToggleItem::toggleTapped()
{
    if (!isToggleButton())
        return;
    updateToggleValidity();
    if (const auto itemModel = model())
        itemModel->valueChanged();
}

void OSTToggleItem::modelDidChange()
{
    if (isToggleButton())
        updateToggleValidity();
}

void OSTToggleItem::updateToggleValidity()
{
    if (const auto itemModel = model())
        itemModel->setValid(itemModel->isOptional() || isSelected());
}

} // namespace ostrel
