#pragma once

#include <QString>
#include <QVariantMap>

#include <memory>

namespace ostrel {

// What an event needs to know about a screen or a flow of the experience document: its key, its
// name and the tracking parameters the document gives it. A screen also names the flow it
// belongs to. The document's types implement it; events never hold on to one.
class OSTTrackedItem {
public:
    virtual ~OSTTrackedItem() = default;

    virtual const QString &key() const = 0;
    virtual const QString &name() const = 0;
    virtual const QVariantMap &trackingParameters() const = 0;
    // The flow that holds this screen; null for a flow, or for a screen outside every flow.
    virtual std::shared_ptr<const OSTTrackedItem> trackedFlow() const { return nullptr; }
};

} // namespace ostrel
