#pragma once

#include "screen/OSTValidationSettings.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel {

class OSTAction;

// Buttons that act as one input ("selectionGroups"); not an element with a frame of its own:
//
//   "elements"          member button key -> the value chosen with it: a string, a number (or
//                       numeric string, read as a number) or an object; other members are skipped
//   "minimumSelection", "maximumSelection"  numbers or numeric strings, clamped to 0...INT_MAX; 0
//                       otherwise
//   "onClick"           the action (OSTAction)
//
// Always an input of the screen's validation; its members are not inputs of their own.
// Immutable, on any thread.
class OSTSelectionGroupDescription {
public:
    OSTSelectionGroupDescription(const QString &key, const QVariantMap &properties);
    ~OSTSelectionGroupDescription();

    const QString &key() const { return m_key; }
    // The members in key order, and the value of each at the same position.
    const QStringList &memberKeys() const { return m_memberKeys; }
    const QVariantList &memberValues() const { return m_memberValues; }
    // The first member standing for `value`, compared with its own type (numbers as numbers).
    std::optional<QString> memberKeyForValue(const QVariant &value) const;
    // Every key "elements" names, those skipped for their value too: none is an input of its own.
    const QStringList &listedKeys() const { return m_listedKeys; }
    int minimumSelection() const { return m_minimumSelection; }
    int maximumSelection() const { return m_maximumSelection; }
    const std::shared_ptr<const OSTAction> &action() const { return m_action; }
    const OSTValidationSettings &validation() const { return m_validation; }

private:
    void readMembers(const QVariantMap &properties);

    const QString m_key;
    QStringList m_memberKeys;
    QVariantList m_memberValues;
    QStringList m_listedKeys;
    const int m_minimumSelection;
    const int m_maximumSelection;
    std::shared_ptr<const OSTAction> m_action;
    const OSTValidationSettings m_validation;
};

} // namespace ostrel
