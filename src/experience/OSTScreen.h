#pragma once

#include "events/OSTTrackedItem.h"

#include <QMutex>
#include <QString>
#include <QVariantMap>

#include <memory>

namespace ostrel {

class OSTFlow;

// Where a flow or screen came from: the service (launch response or its cache) or the local
// default file in the host's bundle.
enum class OSTDocumentOrigin { Server, Local };

// One screen of the experience document: its screen JSON as text plus what the events fired for
// it carry. Built from the screen's key and its metadata object; immutable except for the flow
// that takes it, which the registry sets (under a lock, so readers on any thread see either flow).
class OSTScreen final : public OSTTrackedItem {
public:
    OSTScreen(const QString &key, const QVariantMap &metadata, OSTDocumentOrigin origin);

    OSTScreen(const OSTScreen &) = delete;
    OSTScreen &operator=(const OSTScreen &) = delete;

    // The key as delivered; the registry files the screen under its lower-cased form.
    const QString &key() const override { return m_key; }
    // "json_data", or "" when absent.
    const QString &json() const { return m_json; }
    // "json_version", or "" when absent.
    const QString &jsonVersion() const { return m_jsonVersion; }
    // "experience_name", or "" when absent.
    const QString &name() const override { return m_name; }
    // The tracking keys present in the metadata, empty strings left out.
    const QVariantMap &trackingParameters() const override { return m_trackingParameters; }
    bool isLocal() const { return m_origin == OSTDocumentOrigin::Local; }

    // The flow that took this screen last; null when none did or that flow is gone.
    std::shared_ptr<const OSTFlow> flow() const;
    std::shared_ptr<const OSTTrackedItem> trackedFlow() const override;
    void setFlow(const std::shared_ptr<const OSTFlow> &flow);

private:
    const QString m_key;
    const QString m_json;
    const QString m_jsonVersion;
    const QString m_name;
    const QVariantMap m_trackingParameters;
    const OSTDocumentOrigin m_origin;

    mutable QMutex m_flowLock;
    std::weak_ptr<const OSTFlow> m_flow;
};

} // namespace ostrel
