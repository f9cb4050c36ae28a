#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTSelectionGroupDescription.h"

#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel {

// A screen's JSON text, after dynamic-variable substitution, read once into immutable element
// descriptions; the layout and the views take their values from here and never read JSON.
//
// The elements of each category (OSTScreenVocabulary) come in key order; an entry whose value is
// not an object is no element. Buttons and inputs become the description of their kind
// (OSTButtonDescription, OSTSwitchDescription, OSTTextFieldDescription, OSTPickerDescription).
// Groups list their members under "elements" (strings only); a group may list a key that is no
// element, itself or a group containing it: the document keeps the lists as written, the layout
// and the views decide what they can place.
//
// Immutable once read, shared; read it on the GUI thread (fonts), use it anywhere.
class OSTScreenDocument {
public:
    enum class StatusBarStyle { Default, Light, Hidden };

    // Where an element lies in the layout: the key's element of the latest category in
    // OSTScreenVocabulary::layoutOrder(), its stacking layer ("zLayer" or its category's) and
    // the group holding it (the last group, in key order, that lists it), if any.
    struct LayoutEntry {
        std::shared_ptr<const OSTElementDescription> element;
        qint64 zLayer = 0;
        std::optional<QString> group;
    };

    // The document of a screen text, or null (with the reason logged and in `error`) when the
    // text does not parse or is not a JSON object.
    static std::shared_ptr<const OSTScreenDocument> read(const QString &text, QString *error = nullptr);
    // The document of an already decoded screen object.
    static std::shared_ptr<const OSTScreenDocument> fromLayout(const QVariantMap &layout);

    // The screen's own box, behind every element (the top-level object's look).
    const std::shared_ptr<const OSTElementDescription> &backdrop() const { return m_backdrop; }

    // The elements of a category (by name, e.g. "labels"), in key order.
    QList<std::shared_ptr<const OSTElementDescription>> elements(const QString &category) const;
    const QList<std::shared_ptr<const OSTSelectionGroupDescription>> &selectionGroups() const
    {
        return m_selectionGroups;
    }

    // Every laid-out key, in key order, with what the layout takes of it.
    const QMap<QString, LayoutEntry> &layoutEntries() const { return m_layoutEntries; }

    // The members a group lists, as written (strings only), and every key any group lists.
    QStringList groupMembers(const QString &groupKey) const { return m_groupMembers.value(groupKey); }
    const QStringList &groupedKeys() const { return m_groupedKeys; }
    // The keys of the views a group holds: each member it lists read as a text, so a number 5
    // names the view "5" too (the layout takes string members only).
    QStringList groupViewKeys(const QString &groupKey) const { return m_groupViewKeys.value(groupKey); }

    // The "errorMessage" label, and its look and frame while a message shows: the alternative
    // under animations.error.targets.errorMessage laid over it (the same label without one).
    const std::shared_ptr<const OSTLabelDescription> &errorMessage() const { return m_errorMessage; }
    const std::shared_ptr<const OSTLabelDescription> &errorMessageWhileShowing() const
    {
        return m_errorMessageWhileShowing;
    }

    // "statusBarStyle": "white" shows the bar light, "disabled" hides it; the default look otherwise.
    StatusBarStyle statusBarStyle() const { return m_statusBarStyle; }

private:
    explicit OSTScreenDocument(const QVariantMap &layout);

    void readCategories(const QVariantMap &layout);
    void readGroups(const QVariantMap &layout);
    void readLayoutEntries();
    void adoptMembers(const QString &groupKey);
    void readErrorMessage(const QVariantMap &layout);

    std::shared_ptr<const OSTElementDescription> m_backdrop;
    QHash<QString, QList<std::shared_ptr<const OSTElementDescription>>> m_categories;
    QList<std::shared_ptr<const OSTSelectionGroupDescription>> m_selectionGroups;
    QMap<QString, LayoutEntry> m_layoutEntries;
    QHash<QString, QStringList> m_groupMembers;
    QHash<QString, QStringList> m_groupViewKeys;
    QStringList m_groupedKeys;
    std::shared_ptr<const OSTLabelDescription> m_errorMessage;
    std::shared_ptr<const OSTLabelDescription> m_errorMessageWhileShowing;
    StatusBarStyle m_statusBarStyle = StatusBarStyle::Default;
};

} // namespace ostrel
