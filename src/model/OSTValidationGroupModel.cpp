#include "model/OSTValidationGroupModel.h"

#include "model/OSTValidationGroup.h"
#include "model/OSTValidationItemModel.h"

#include <algorithm>

namespace ostrel {

namespace {

OSTValidationGroupModel::Items withoutNullItems(OSTValidationGroupModel::Items items)
{
    std::erase(items, nullptr);
    return items;
}

} // namespace

std::shared_ptr<OSTValidationGroupModel> OSTValidationGroupModel::create(const QString &key, Items items)
{
    // The constructor is private so that every group is shared and its items can hold it weakly.
    std::shared_ptr<OSTValidationGroupModel> group(new OSTValidationGroupModel(key, withoutNullItems(std::move(items))));
    for (const auto &item : group->m_items)
        item->m_group = group;
    return group;
}

OSTValidationGroupModel::OSTValidationGroupModel(const QString &key, Items items)
    : m_key(key)
    , m_items(std::move(items))
{
}

std::shared_ptr<OSTValidationItemModel> OSTValidationGroupModel::itemModelForKey(const QString &key) const
{
    const auto found = std::find_if(m_items.begin(), m_items.end(),
                                    [&](const auto &item) { return item->key() == key; });
    return found == m_items.end() ? nullptr : *found;
}

OSTValidationGroup *OSTValidationGroupModel::group() const
{
    return m_group.lock().get();
}

void OSTValidationGroupModel::setGroup(OSTValidationGroup *view)
{
    m_group = view ? view->weakReference() : std::weak_ptr<OSTValidationGroup>();
}

void OSTValidationGroupModel::setPhoneNumberItem(std::shared_ptr<OSTValidationItemModel> item)
{
    m_phoneNumberItem = std::move(item);
}

bool OSTValidationGroupModel::isValid() const
{
    return !m_errorMessage
        && std::all_of(m_items.begin(), m_items.end(), [](const auto &item) { return item->isValid(); });
}

std::optional<QString> OSTValidationGroupModel::errorMessage() const
{
    if (m_errorMessage)
        return m_errorMessage;
    for (const auto &item : m_items) {
        if (!item->isValid())
            return item->errorMessage();
    }
    return std::nullopt;
}

void OSTValidationGroupModel::setErrorMessage(const std::optional<QString> &message)
{
    m_errorMessage = message;
}

std::optional<QString> OSTValidationGroupModel::stateSensitiveErrorMessage() const
{
    if (m_errorMessage)
        return m_errorMessage;
    for (const auto &item : m_items) {
        if (!item->isValid() && item->shouldShowErrorMessage())
            return item->errorMessage();
    }
    return std::nullopt;
}

QVariantMap OSTValidationGroupModel::uniqueFields() const
{
    return fieldsOfItems([](const OSTValidationItemModel &item) {
        return item.isUnique() && item.visibilityLevel() != OSTVisibilityLevel::Transient;
    });
}

QVariantMap OSTValidationGroupModel::allFields() const
{
    return fieldsOfItems([](const OSTValidationItemModel &item) {
        return item.visibilityLevel() != OSTVisibilityLevel::Transient;
    });
}

QVariantMap OSTValidationGroupModel::allSavableFields() const
{
    return fieldsOfItems([](const OSTValidationItemModel &item) {
        return item.visibilityLevel() == OSTVisibilityLevel::Savable;
    });
}

void OSTValidationGroupModel::itemValidityWasSet()
{
    m_errorMessage.reset();
    notifyView();
}

void OSTValidationGroupModel::notifyView() const
{
    if (OSTValidationGroup *view = group())
        view->validityChanged();
}

QVariantMap OSTValidationGroupModel::fieldsOfItems(
    const std::function<bool(const OSTValidationItemModel &)> &isTaken) const
{
    QVariantMap fields;
    for (const auto &item : m_items) {
        if (isTaken(*item) && !item->value().isNull())
            fields.insert(item->userPropertyName(), item->value());
    }
    return fields;
}

} // namespace ostrel
