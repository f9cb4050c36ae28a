#include "model/OSTSelectionGroup.h"

#include "experience/OSTAction.h"
#include "model/OSTSelectionGroupMember.h"
#include "model/OSTValidationItemModel.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTSelectionGroup::OSTSelectionGroup(std::shared_ptr<const OSTSelectionGroupDescription> description, QObject *parent)
    : QObject(parent), m_description(std::move(description))
{
}

OSTSelectionGroup::~OSTSelectionGroup() = default;

QList<OSTSelectionGroupMember *> OSTSelectionGroup::elements() const
{
    QList<OSTSelectionGroupMember *> buttons;
    for (const Element &element : m_elements)
        if (element.object)
            buttons.append(element.member);
    return buttons;
}

void OSTSelectionGroup::setElements(const QList<OSTSelectionGroupMember *> &buttons)
{
    for (const Element &element : std::as_const(m_elements))
        if (element.object)
            disconnect(element.object, nullptr, this, nullptr);
    m_elements.clear();
    for (OSTSelectionGroupMember *button : buttons) {
        if (!button)
            continue;
        // A member button does nothing on its own: only the group decides its selected state.
        button->joinGroup(*this, [this, button] { elementTapped(button); });
        m_elements.append({&button->memberObject(), button});
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
    const QList<OSTSelectionGroupMember *> buttons = elements();
    return int(std::count_if(buttons.begin(), buttons.end(),
                             [](const OSTSelectionGroupMember *button) { return button->isMemberSelected(); }));
}

QVariant OSTSelectionGroup::valueForElementWithKey(const QString &key) const
{
    const qsizetype index = elementKeys().indexOf(key);
    return index >= 0 ? values().at(index) : QVariant();
}

void OSTSelectionGroup::elementTapped(OSTSelectionGroupMember *button)
{
    if (!button)
        return;
    const QString buttonName = button->memberKey();
    if (maximumSelection() >= 2 && !button->isMemberSelected() && currentSelection() >= maximumSelection()) {
        if (OSTSelectionGroupDelegate *target = delegate())
            target->selectionGroupDidTapButton(*this, buttonName, nullptr);
        return;
    }
    if (maximumSelection() == 1 && !button->isMemberSelected())
        for (OSTSelectionGroupMember *member : elements())
            member->setMemberSelected(false);
    button->setMemberSelected(!button->isMemberSelected());

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
    for (OSTSelectionGroupMember *button : elements()) {
        if (!button->isMemberSelected())
            continue;
        if (const QVariant value = valueForElementWithKey(button->memberKey()); !value.isNull())
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
    for (OSTSelectionGroupMember *button : elements())
        button->setMemberSelected(selectedKeys.contains(button->memberKey()));
}

void OSTSelectionGroup::modelDidChange()
{
    validate();
}

} // namespace ostrel
