#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel {

// What a button press or the end of a flow asks the experience to do, parsed from an action
// object {"func": ..., "params": {...}}. Only the parameters of its own type are read; without
// "params" they all stay unset. Immutable, so it may be shared between threads.
class OSTAction {
public:
    // A login action's success action may itself be a login action; a hostile document could
    // nest them deeply enough to exhaust the stack, so parsing stops at this depth.
    static constexpr int maximumNestingDepth = 32;

    // An empty dictionary gives an action of type none with an empty name.
    explicit OSTAction(const QVariantMap &properties = {});

    const QString &name() const { return m_name; }
    OSTActionType type() const { return m_type; }
    // startFlow only: the lower-cased "flowName" ("" when absent).
    const std::optional<QString> &flowKey() const { return m_flowKey; }
    // openUrl only: "url" ("" when absent).
    const std::optional<QString> &urlString() const { return m_urlString; }
    // openUrl only: whether the experience closes after opening the address.
    bool shouldCloseSelf() const { return m_shouldCloseSelf; }
    // loginFacebook only: what runs after a successful login; null when absent.
    const std::shared_ptr<const OSTAction> &successAction() const { return m_successAction; }

private:
    OSTAction(const QVariantMap &properties, int depth);

    void readParameters(const QVariantMap &parameters, int depth);

    QString m_name;
    OSTActionType m_type = OSTActionTypeNone;
    std::optional<QString> m_flowKey;
    std::optional<QString> m_urlString;
    bool m_shouldCloseSelf = false;
    std::shared_ptr<const OSTAction> m_successAction;
};

} // namespace ostrel
