#pragma once

#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

namespace ostrel {

// A named, ordered sequence of screens. Built from the flow's key and metadata object; the
// registry then hands it the screens its steps name before anyone else sees it, and it stays
// immutable from then on. It holds its screens; each screen refers back to it weakly.
class OSTFlow final : public OSTTrackedItem {
public:
    using Screens = std::vector<std::shared_ptr<OSTScreen>>;

    OSTFlow(const QString &key, const QVariantMap &metadata, OSTDocumentOrigin origin);

    OSTFlow(const OSTFlow &) = delete;
    OSTFlow &operator=(const OSTFlow &) = delete;

    // The key as delivered; the registry files the flow under its lower-cased form.
    const QString &key() const override { return m_key; }
    // "name", or "" when absent.
    const QString &name() const override { return m_name; }
    // The string entries of "steps", lower-cased, in order.
    const QStringList &screenKeys() const { return m_screenKeys; }
    // The registered screens among the steps, in order.
    const Screens &screens() const { return m_screens; }
    // "variation_name"; absent when the metadata has none.
    const std::optional<QString> &variationName() const { return m_variationName; }
    // "ost_segment_id" and "segment_name" when present and not empty.
    const QVariantMap &trackingParameters() const override { return m_trackingParameters; }
    // "properties"."flowEndAction"; an action of type none when absent.
    const OSTAction &endAction() const { return m_endAction; }
    // "properties"."loginFacebook" as delivered (empty when absent), from which the user layer
    // builds the flow's Facebook login settings with their defaults.
    const QVariantMap &facebookLoginProperties() const { return m_facebookLoginProperties; }
    bool isLocal() const { return m_origin == OSTDocumentOrigin::Local; }

    // Called by the registry only, before the flow is published.
    void setScreens(Screens screens) { m_screens = std::move(screens); }

private:
    const QString m_key;
    const QString m_name;
    const QStringList m_screenKeys;
    const std::optional<QString> m_variationName;
    const QVariantMap m_trackingParameters;
    const OSTAction m_endAction;
    const QVariantMap m_facebookLoginProperties;
    const OSTDocumentOrigin m_origin;
    Screens m_screens;
};

} // namespace ostrel
