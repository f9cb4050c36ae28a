#include "model/OSTValidationManager.h"

#include "model/OSTValidationGroup.h"
#include "model/OSTValidationGroupModel.h"
#include "model/OSTValidationItem.h"
#include "model/OSTValidationItemModel.h"
#include "screen/OSTButtonDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTSwitchDescription.h"
#include "screen/OSTTextFieldDescription.h"

#include <algorithm>
#include <span>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

using Items = OSTValidationGroupModel::Items;

struct ScreenItems {
    Items items;
    std::shared_ptr<OSTValidationItemModel> phoneNumberItem;
};

// Text fields and pickers; their settings say how each value is kept.
const OSTValidationSettings *inputValidation(const OSTElementDescription &element)
{
    if (const auto *field = dynamic_cast<const OSTTextFieldDescription *>(&element))
        return &field->validation();
    if (const auto *picker = dynamic_cast<const OSTPickerDescription *>(&element))
        return &picker->validation();
    return nullptr;
}

void collectInputItems(const OSTScreenDocument &document, ScreenItems &screen)
{
    for (const auto &element : document.elements(u"inputs"_s)) {
        const OSTValidationSettings *settings = inputValidation(*element);
        if (!settings)
            continue;
        auto item = std::make_shared<OSTValidationItemModel>(element->key(), *settings);
        switch (settings->valueVisibility) {
        case OSTValidationSettings::ValueVisibility::Transient:
            item->setVisibilityLevel(OSTVisibilityLevel::Transient);
            break;
        case OSTValidationSettings::ValueVisibility::Secret:
            item->setVisibilityLevel(OSTVisibilityLevel::Secret);
            break;
        case OSTValidationSettings::ValueVisibility::PhoneNumberToVerify:
            screen.phoneNumberItem = item;
            break;
        case OSTValidationSettings::ValueVisibility::Plain:
            break;
        }
        screen.items.push_back(std::move(item));
    }
}

std::optional<OSTValidationSettings> buttonValidation(const OSTElementDescription &element)
{
    if (const auto *button = dynamic_cast<const OSTButtonDescription *>(&element))
        return button->validation();
    if (const auto *toggleSwitch = dynamic_cast<const OSTSwitchDescription *>(&element))
        return toggleSwitch->validation();
    return std::nullopt;
}

// Toggle buttons, switches and image-upload buttons; plain buttons take no part in validation.
void collectButtonItems(const OSTScreenDocument &document, Items &items)
{
    for (const auto &element : document.elements(u"buttons"_s)) {
        if (const std::optional<OSTValidationSettings> validation = buttonValidation(*element))
            items.push_back(std::make_shared<OSTValidationItemModel>(element->key(), *validation));
    }
}

// A selection group is judged as one input, so the buttons it lists lose their own items.
void collectSelectionGroupItems(const OSTScreenDocument &document, Items &items)
{
    for (const auto &group : document.selectionGroups()) {
        items.push_back(std::make_shared<OSTValidationItemModel>(group->key(), group->validation()));
        std::erase_if(items, [&](const auto &item) { return group->listedKeys().contains(item->key()); });
    }
}

void bindInput(OSTValidationItem &input, const std::shared_ptr<OSTValidationItemModel> &item)
{
    input.setValue(item->value());
    item->setItem(&input);
    input.setModel(item);
    input.validityChanged();
}

std::optional<QString> messageForField(const OSTValidationResult &result, const QString &name)
{
    const auto found = result.errorMessages().constFind(name);
    if (found != result.errorMessages().constEnd())
        return *found;
    return result.defaultErrorMessage();
}

void applyResultToGroup(const OSTValidationResult &result, const OSTValidationGroupModel &group)
{
    for (const auto &item : group.items()) {
        if (!result.invalidFields().contains(item->userPropertyName()))
            continue;
        item->setErrorMessage(messageForField(result, item->userPropertyName()));
        item->setValid(false);
    }
}

// The groups' fields merged in order, so a later screen overwrites an earlier one's value.
QVariantMap mergedFields(std::span<const std::shared_ptr<OSTValidationGroupModel>> groups,
                         QVariantMap (OSTValidationGroupModel::*fieldsOfGroup)() const)
{
    QVariantMap fields;
    for (const auto &group : groups)
        fields.insert(((*group).*fieldsOfGroup)());
    return fields;
}

} // namespace

void OSTValidationManager::addScreen(const QString &key, const OSTScreenDocument &document)
{
    if (groupModelForKey(key))
        return;
    ScreenItems screen;
    collectInputItems(document, screen);
    collectButtonItems(document, screen.items);
    collectSelectionGroupItems(document, screen.items);
    auto group = OSTValidationGroupModel::create(key, std::move(screen.items));
    group->setPhoneNumberItem(std::move(screen.phoneNumberItem));
    m_groups.push_back(std::move(group));
}

void OSTValidationManager::attachGroup(OSTValidationGroup &view, const QString &key, const Inputs &inputs)
{
    const auto group = groupModelForKey(key);
    if (!group)
        return;
    view.setModel(group);
    group->setGroup(&view);
    for (const auto &item : group->items()) {
        if (OSTValidationItem *input = inputs.value(item->key()))
            bindInput(*input, item);
    }
    view.validityChanged();
}

std::shared_ptr<OSTValidationGroupModel> OSTValidationManager::groupModelForKey(const QString &key) const
{
    const auto found = findGroup(key);
    return found == m_groups.end() ? nullptr : *found;
}

std::shared_ptr<OSTValidationItemModel> OSTValidationManager::phoneNumberItemOfGroupWithKey(const QString &key) const
{
    const auto group = groupModelForKey(key);
    return group ? group->phoneNumberItem() : nullptr;
}

QVariantMap OSTValidationManager::uniqueFieldsOfGroupWithKey(const QString &key) const
{
    const auto group = groupModelForKey(key);
    return group ? group->uniqueFields() : QVariantMap();
}

QVariantMap OSTValidationManager::allSavableFieldsOfGroupWithKey(const QString &key) const
{
    const auto group = groupModelForKey(key);
    return group ? group->allSavableFields() : QVariantMap();
}

QVariantMap OSTValidationManager::allFieldsUpToGroupWithKey(const QString &key) const
{
    const auto last = findGroup(key);
    const auto end = last == m_groups.end() ? last : std::next(last);
    return mergedFields({m_groups.begin(), end}, &OSTValidationGroupModel::allFields);
}

QVariantMap OSTValidationManager::allFields() const
{
    return mergedFields(m_groups, &OSTValidationGroupModel::allFields);
}

QVariantMap OSTValidationManager::allSavableFields() const
{
    return mergedFields(m_groups, &OSTValidationGroupModel::allSavableFields);
}

OSTValidationManager::Groups::const_iterator OSTValidationManager::findGroup(const QString &key) const
{
    return std::find_if(m_groups.begin(), m_groups.end(), [&](const auto &group) { return group->key() == key; });
}

void OSTValidationManager::handleValidationResult(const std::optional<OSTValidationResult> &result,
                                                  const QString &key)
{
    if (!result)
        return;
    if (const auto group = groupModelForKey(key))
        applyResultToGroup(*result, *group);
}

void OSTValidationManager::handleValidationResult(const std::optional<OSTValidationResult> &result)
{
    if (!result || result->isValid())
        return;
    if (!result->invalidFields().isEmpty()) {
        for (const auto &group : m_groups)
            applyResultToGroup(*result, *group);
        return;
    }
    if (m_groups.empty())
        return;
    const auto &lastGroup = m_groups.back();
    lastGroup->setErrorMessage(result->defaultErrorMessage());
    lastGroup->notifyView();
}

} // namespace ostrel
