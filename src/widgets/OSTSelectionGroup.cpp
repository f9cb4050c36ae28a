#include "widgets/OSTSelectionGroup.h"

#include "experience/OSTAction.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTButton.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTSelectionGroup::OSTSelectionGroup(std::shared_ptr<const OSTSelectionGroupDescription> description, QObject *parent)
    : QObject(parent), m_description(std::move(description))
{
}

OSTSelectionGroup::~OSTSelectionGroup() = default;

QList<OSTButton *> OSTSelectionGroup::elements() const
{
    QList<OSTButton *> buttons;
    for (const QPointer<OSTButton> &button : m_elements)
        if (button)
            buttons.append(button);
    return buttons;
}

void OSTSelectionGroup::setElements(const QList<OSTButton *> &buttons)
{
    for (const QPointer<OSTButton> &button : std::as_const(m_elements))
        if (button)
            disconnect(button, &OSTButton::tapped, this, nullptr);
    m_elements.clear();
    for (OSTButton *button : buttons) {
        if (!button)
            continue;
        // A member button does nothing on its own: only the group decides its selected state.
        disconnect(button, &OSTButton::tapped, nullptr, nullptr);
        button->setCheckable(true);
        connect(button, &OSTButton::tapped, this, [this](OSTButton *tapped) {
            // The click has already toggled the button; the group decides instead.
            tapped->setChecked(!tapped->isChecked());
            elementTapped(tapped);
        });
        m_elements.append(button);
    }
}

void OSTSelectionGroup::setDelegate(QObject *delegate)
{
    m_delegate = qobject_cast<OSTSelectionGroupDelegate *>(delegate) ? delegate : nullptr;
}

OSTSelectionGroupDelegate *OSTSelectionGroup::delegate() const
{
    return qobject_cast<OSTSelectionGroupDelegate *>(m_delegate.data());
}

int OSTSelectionGroup::currentSelection() const
{
    const QList<OSTButton *> buttons = elements();
    return int(std::count_if(buttons.begin(), buttons.end(), [](const OSTButton *button) { return button->isChecked(); }));
}

QVariant OSTSelectionGroup::valueForElementWithKey(const QString &key) const
{
    const qsizetype index = elementKeys().indexOf(key);
    return index >= 0 ? values().at(index) : QVariant();
}

void OSTSelectionGroup::elementTapped(OSTButton *button)
{
    if (!button)
        return;
    const QString buttonName = button->name();
    if (maximumSelection() >= 2 && !button->isChecked() && currentSelection() >= maximumSelection()) {
        if (OSTSelectionGroupDelegate *target = delegate())
            target->selectionGroupDidTapButton(*this, buttonName, nullptr);
        return;
    }
    if (maximumSelection() == 1 && !button->isChecked())
        for (OSTButton *member : elements())
            member->setChecked(false);
    button->setChecked(!button->isChecked());

    if (const std::shared_ptr<OSTValidationItemModel> itemModel = model())
        itemModel->valueChanged();
    validate();

    std::shared_ptr<const OSTAction> releasedAction;
    if (OSTSelectionGroupDelegate *target = delegate(); target && action() && currentSelection() >= minimumSelection()) {
        target->selectionGroupShouldHandleAction(*this, action());
        releasedAction = action();
    }
    // The delegate may have removed the group's screen while it was asked.
    if (OSTSelectionGroupDelegate *target = delegate())
        target->selectionGroupDidTapButton(*this, buttonName, releasedAction);
}

void OSTSelectionGroup::validate()
{
    const std::shared_ptr<OSTValidationItemModel> itemModel = model();
    const bool optional = itemModel && itemModel->isOptional();
    const bool valid = optional || minimumSelection() == 0 || currentSelection() >= minimumSelection();
    if (valid)
        m_shouldShowErrorMessage = true;
    if (itemModel)
        itemModel->setValid(valid);
}

QVariant OSTSelectionGroup::value() const
{
    QVariantList selected;
    for (OSTButton *button : elements()) {
        if (!button->isChecked())
            continue;
        if (const QVariant value = valueForElementWithKey(button->name()); !value.isNull())
            selected.append(value);
    }
    return selected;
}

void OSTSelectionGroup::setValue(const QVariant &value)
{
    const QVariantList list = value.metaType() == QMetaType::fromType<QVariantList>() ? value.toList() : QVariantList();
    QStringList selectedKeys;
    for (const QVariant &entry : list) {
        if (const std::optional<QString> key = m_description->memberKeyForValue(entry))
            selectedKeys.append(*key);
    }
    for (OSTButton *button : elements())
        button->setChecked(selectedKeys.contains(button->name()));
}

void OSTSelectionGroup::modelDidChange()
{
    validate();
}

} // namespace ostrel
