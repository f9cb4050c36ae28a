#pragma once

#include "screen/OSTValidationSettings.h"

#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace ostrel {

class OSTValidationGroupModel;
class OSTValidationItem;

// How far an input's value may travel beyond its screen.
enum class OSTVisibilityLevel {
    Savable = 0,   // sent with the flow's fields and saved as a user property
    Secret = 1,    // sent with the flow's fields, never saved (passwords, secure entry)
    Transient = 2, // never leaves its screen (a verification PIN)
};

// The validation state and the last value of one input of a screen.
//
// Ownership: shared by its group model, which the flow's validation manager owns, so it keeps
// the user's value while the input views come and go with their screens. It refers weakly to the
// bound input (item()) and to its owning group: a destroyed input reads as none, and once the
// group is destroyed nobody is notified any more.
//
// Thread: GUI thread only, like the inputs that write it.
class OSTValidationItemModel {
public:
    // With the input's validation settings, read by its element description.
    OSTValidationItemModel(const QString &key, const OSTValidationSettings &settings);
    OSTValidationItemModel(const OSTValidationItemModel &) = delete;
    OSTValidationItemModel &operator=(const OSTValidationItemModel &) = delete;

    // The input's element key in the screen's layout.
    const QString &key() const { return m_key; }
    bool isOptional() const { return m_optional; }
    bool isUnique() const { return m_unique; }
    // The key of the input's value in the field dictionaries.
    const QString &userPropertyName() const { return m_userPropertyName; }
    OSTVisibilityLevel visibilityLevel() const { return m_visibilityLevel; }
    void setVisibilityLevel(OSTVisibilityLevel level) { m_visibilityLevel = level; }

    bool isValid() const { return m_valid; }
    // Written by the bound input after each check. Tells the input when the validity changed,
    // drops a message set by a validation result once the input is valid, and tells the owning
    // group on every call, changed or not, so that it drops its screen-level message.
    void setValid(bool valid);

    // The message from the latest validation result, else defaultErrorMessage().
    QString errorMessage() const;
    // A message from a validation result; no message falls back to the default one.
    void setErrorMessage(const std::optional<QString> &message);
    const QString &defaultErrorMessage() const { return m_defaultErrorMessage; }
    // The bound input decides when its error may be shown; false while no input is bound.
    bool shouldShowErrorMessage() const;

    // The bound input, or null when none is bound or it has been destroyed. Use it at once.
    OSTValidationItem *item() const;
    // Binds an input (weakly); null unbinds.
    void setItem(OSTValidationItem *input);

    // The value last taken from the input, null when none.
    const QVariant &value() const { return m_value; }
    // Takes the bound input's current value. Without a bound input the stored value stays.
    void valueChanged();

private:
    friend class OSTValidationGroupModel;

    const QString m_key;
    const bool m_optional;
    const bool m_unique;
    const QString m_userPropertyName;
    const QString m_defaultErrorMessage;
    OSTVisibilityLevel m_visibilityLevel = OSTVisibilityLevel::Savable;
    bool m_valid = false;
    std::optional<QString> m_errorMessage;
    QVariant m_value;
    std::weak_ptr<OSTValidationItem> m_item;
    // Set by the group that takes this item; expires with that group.
    std::weak_ptr<OSTValidationGroupModel> m_group;
};

} // namespace ostrel
