#pragma once

#include <ostrel/OSTValidationResult.h>

#include <QMap>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace ostrel {

class OSTScreenDocument;
class OSTValidationGroup;
class OSTValidationGroupModel;
class OSTValidationItem;
class OSTValidationItemModel;

// The validation state of one flow: one group per screen, in the order in which the screens were
// registered, each with one item per input. It outlives the screen views, so a screen that is
// shown again gets back the values entered before, and it spreads the host's validation results
// over the screens.
//
// Ownership: one per flow, owned by the experience controller while the flow is current; owns
// its groups (and through them the items and their values). Screen views and input views are
// only referred to weakly and may be destroyed at any time.
//
// Thread: GUI thread only; validation results must be handed in there.
class OSTValidationManager {
public:
    using Groups = std::vector<std::shared_ptr<OSTValidationGroupModel>>;
    using Inputs = QMap<QString, OSTValidationItem *>;

    OSTValidationManager() = default;
    OSTValidationManager(const OSTValidationManager &) = delete;
    OSTValidationManager &operator=(const OSTValidationManager &) = delete;

    const Groups &groups() const { return m_groups; }

    // Registers a screen from its document: one item per input (text field or picker), per button
    // with a "buttonType" (switches included), and per selection group (whose listed buttons then
    // have no item of their own). A screen registered before keeps its group and values.
    void addScreen(const QString &key, const OSTScreenDocument &document);
    // Binds a registered screen's view and its inputs (element key to input; missing or null
    // inputs are skipped) to their models, restoring into each input the value it had before.
    // An unknown screen key does nothing.
    void attachGroup(OSTValidationGroup &view, const QString &key, const Inputs &inputs);

    // Null when no screen has that key.
    std::shared_ptr<OSTValidationGroupModel> groupModelForKey(const QString &key) const;
    std::shared_ptr<OSTValidationItemModel> phoneNumberItemOfGroupWithKey(const QString &key) const;

    // Field dictionaries (user-property name to value); empty for an unknown screen key. Across
    // screens, a later screen overwrites an earlier one's value with the same name.
    QVariantMap uniqueFieldsOfGroupWithKey(const QString &key) const;
    QVariantMap allSavableFieldsOfGroupWithKey(const QString &key) const;
    // The screens up to and including `key`, or every screen when none has that key.
    QVariantMap allFieldsUpToGroupWithKey(const QString &key) const;
    QVariantMap allFields() const;
    QVariantMap allSavableFields() const;

    // Marks the screen's items named in the result invalid, each with its own message or the
    // result's default one. No result or an unknown key does nothing.
    void handleValidationResult(const std::optional<OSTValidationResult> &result, const QString &key);
    // Applies a result to the whole flow: to every screen when it names fields; otherwise its
    // default message becomes the screen-level message of the last registered screen (the
    // furthest reached). No result or a valid one does nothing.
    void handleValidationResult(const std::optional<OSTValidationResult> &result);

private:
    // The first group with that screen key.
    Groups::const_iterator findGroup(const QString &key) const;

    Groups m_groups;
};

} // namespace ostrel
