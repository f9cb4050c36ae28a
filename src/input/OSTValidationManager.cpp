#include "input/OSTValidationManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "input/OSTValidationGroup.h"
#include "input/OSTValidationGroupModel.h"
#include "input/OSTValidationItem.h"
#include "input/OSTValidationItemModel.h"

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

// Calls `visit` with each entry of the layout's `category` whose properties are an object.
template <typename Visitor>
void forEachElement(const QVariantMap &layout, const QString &category, Visitor visit)
{
    const QVariantMap elements = ost_dictionaryForKey(layout, category).value_or(QVariantMap());
    for (auto element = elements.constBegin(); element != elements.constEnd(); ++element) {
        const std::optional<QVariantMap> properties = ost_dictionaryForKey(elements, element.key());
        if (!properties) {
            OSTLogging::logWarning(u"Ignoring \"%1\" in \"%2\" for validation: its properties are not an object."_s,
                                   element.key(), category);
            continue;
        }
        visit(element.key(), *properties);
    }
}

void collectInputItems(const QVariantMap &layout, ScreenItems &screen)
{
    forEachElement(layout, u"inputs"_s, [&](const QString &key, const QVariantMap &properties) {
        auto item = std::make_shared<OSTValidationItemModel>(key, properties);
        const QString textType = ost_stringForKey(properties, u"textType"_s).value_or(QString());
        const bool secureTextEntry = ost_boolValue(ost_stringForKey(properties, u"secureTextEntry"_s).value_or(QString()));
        if (textType == u"phoneNumberPin"_s)
            item->setVisibilityLevel(OSTVisibilityLevel::Transient);
        else if (textType == u"password"_s || secureTextEntry)
            item->setVisibilityLevel(OSTVisibilityLevel::Secret);
        else if (textType == u"phoneNumberValidated"_s)
            screen.phoneNumberItem = item;
        screen.items.push_back(std::move(item));
    });
}

// Toggle buttons, switches and image-upload buttons; plain buttons take no part in validation.
void collectButtonItems(const QVariantMap &layout, Items &items)
{
    forEachElement(layout, u"buttons"_s, [&](const QString &key, const QVariantMap &properties) {
        if (ost_stringForKey(properties, u"buttonType"_s))
            items.push_back(std::make_shared<OSTValidationItemModel>(key, properties));
    });
}

// A selection group is judged as one input, so its member buttons lose their own items.
void collectSelectionGroupItems(const QVariantMap &layout, Items &items)
{
    forEachElement(layout, u"selectionGroups"_s, [&](const QString &key, const QVariantMap &properties) {
        items.push_back(std::make_shared<OSTValidationItemModel>(key, properties));
        const QVariantMap members = ost_dictionaryForKey(properties, u"elements"_s).value_or(QVariantMap());
        std::erase_if(items, [&](const auto &item) { return members.contains(item->key()); });
    });
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

void OSTValidationManager::addScreenWithKey(const QString &key, const QVariantMap &layout)
{
    if (groupModelForKey(key))
        return;
    ScreenItems screen;
    collectInputItems(layout, screen);
    collectButtonItems(layout, screen.items);
    collectSelectionGroupItems(layout, screen.items);
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
