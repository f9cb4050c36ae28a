#pragma once

#include <ostrel/OSTExport.h>

#include <QString>
#include <QUuid>

namespace ostrel {

// The name under which a host registers its advertising-identifier adapter with OSTRuntime.
inline const QString OSTAdvertisingIdentifierSourceName = QStringLiteral("OSTAdvertisingIdentifierSource");

// A host adapter that tells the SDK the device's advertising identifier, for platforms that have
// one. Without a registered adapter the SDK reports none.
//
//     OSTRuntime::registerInstance<OSTAdvertisingIdentifierSource>(
//         OSTAdvertisingIdentifierSourceName, std::make_shared<MyAdvertisingSource>());
//
// Called from any thread.
class OSTREL_EXPORT OSTAdvertisingIdentifierSource {
public:
    virtual ~OSTAdvertisingIdentifierSource();
    // Whether the user allows advertising tracking; false keeps the identifier from the SDK.
    virtual bool isAdvertisingTrackingEnabled() const = 0;
    virtual QUuid advertisingIdentifier() const = 0;
};

} // namespace ostrel
