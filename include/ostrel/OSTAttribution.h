#pragma once

#include <ostrel/OSTExport.h>

#include <QString>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// How the user came to the application: the tracking link, source and targeting of the install
// (install attribution) or of the most recent opening by a link (latest attribution). Fields the
// service did not report are empty. A plain value: copy it freely.
class OSTREL_EXPORT OSTAttribution {
public:
    bool isReferral = false;
    std::optional<QString> deepLink;
    std::optional<QString> linkID;
    std::optional<QString> linkName;
    // The link's attribution parameters.
    QVariantMap parameters;
    // What the service knows of the user who sent the link.
    QVariantMap sender;
    std::optional<QString> sourceID;
    std::optional<QString> sourceName;
    std::optional<QString> targetingID;
    std::optional<QString> targetingKey;
    std::optional<QString> targetingName;

    friend bool operator==(const OSTAttribution &, const OSTAttribution &) = default;
};

} // namespace ostrel
