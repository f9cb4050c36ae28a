#pragma once

#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ostrel {

class OSTValidationGroup;
class OSTValidationItemModel;

// The validation state of one screen: its items, a screen-level message from a validation result,
// and the values of its inputs in the cuts that the flow hands on.
//
// Ownership: made by create() and shared by the flow's validation manager; owns its items, whose
// list is fixed at creation. It refers weakly to the screen view (group()), which may be destroyed
// and built again while the model lives on.
//
// It listens to its items: every setValid on one of them clears the screen-level message and
// tells the screen view. Each item holds its group weakly, so the group stops listening when it
// is destroyed and an item that outlives it notifies nobody. An item belongs to the group that
// took it last.
//
// Thread: GUI thread only.
class OSTValidationGroupModel {
public:
    using Items = std::vector<std::shared_ptr<OSTValidationItemModel>>;

    // A group for the screen `key` that listens to `items` (null entries are dropped).
    static std::shared_ptr<OSTValidationGroupModel> create(const QString &key, Items items);
    OSTValidationGroupModel(const OSTValidationGroupModel &) = delete;
    OSTValidationGroupModel &operator=(const OSTValidationGroupModel &) = delete;

    // The screen key.
    const QString &key() const { return m_key; }
    const Items &items() const { return m_items; }
    // The first item with that element key, or null.
    std::shared_ptr<OSTValidationItemModel> itemModelForKey(const QString &key) const;

    // The screen view, or null when none is attached or it has been destroyed. Use it at once.
    OSTValidationGroup *group() const;
    // Binds a screen view (weakly); null unbinds.
    void setGroup(OSTValidationGroup *view);

    // The item of the screen's validated phone-number field, or null.
    const std::shared_ptr<OSTValidationItemModel> &phoneNumberItem() const { return m_phoneNumberItem; }
    void setPhoneNumberItem(std::shared_ptr<OSTValidationItemModel> item);

    // No screen-level message and every item valid; a group without items is valid.
    bool isValid() const;
    // The screen-level message when set, else the message of the first invalid item, else none.
    std::optional<QString> errorMessage() const;
    // A screen-level message from a validation result; cleared whenever an item's validity is set.
    void setErrorMessage(const std::optional<QString> &message);
    // The message the screen shows: the screen-level message when set, else the message of the
    // first invalid item whose input lets its error be shown, else none.
    std::optional<QString> stateSensitiveErrorMessage() const;
    // Tells the screen view, when one is attached, that validity or messages may have changed.
    void notifyView() const;

    // Field dictionaries from user-property name to value. Items without a value are left out;
    // a later item overwrites an earlier one with the same name.
    // Unique items that may leave the screen, for the host's uniqueness check.
    QVariantMap uniqueFields() const;
    // Every item that may leave the screen (savable and secret ones).
    QVariantMap allFields() const;
    // Items whose values may be saved as user properties.
    QVariantMap allSavableFields() const;

private:
    friend class OSTValidationItemModel;

    OSTValidationGroupModel(const QString &key, Items items);

    // Called by an item on every setValid.
    void itemValidityWasSet();
    QVariantMap fieldsOfItems(const std::function<bool(const OSTValidationItemModel &)> &isTaken) const;

    const QString m_key;
    const Items m_items;
    std::weak_ptr<OSTValidationGroup> m_group;
    std::shared_ptr<OSTValidationItemModel> m_phoneNumberItem;
    std::optional<QString> m_errorMessage;
};

} // namespace ostrel
