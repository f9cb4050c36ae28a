#pragma once

#include <QString>

namespace ostrel {

class OSTDefaultsStore;
class OSTUserDefaultsManager;

// Carries over, once per SDK version, what version 2 of the SDK left on the device: the user and
// log-in flags (domain "com.ostrelhq.sdk.data"), the failed-event queue (domain
// "com.ostrelhq.sdk.event", which the event journal takes in at the next start) and the image
// folder "ost_images". The old stores are only read and stay in place. A device that already ran
// this version is left alone; a fresh installation is only marked ("lastMigratedVersion").
//
// Must run before the managers read the stores: start-up runs it first, and a Qt start-up
// function runs it at the first turn of the event loop for a host that starts the SDK later (by
// then the host has named its application, which decides where the stores live). Malformed old
// data is skipped piece by piece. GUI thread.
class OSTMigration {
public:
    OSTMigration() = delete;

    // Migrates the application's own stores and folder for this SDK version.
    static void migrate();

    // Where the old data is read and the new data written.
    struct Stores {
        // Holds the old domains.
        const OSTDefaultsStore &store;
        // The SDK's settings, which receive the migrated values and the version marker.
        OSTUserDefaultsManager &defaults;
        // The SDK's base folder, which holds "ost_images" and receives "images".
        QString baseDirectory;
    };
    static void migrate(const Stores &stores, const QString &currentVersion);

    // Arranges for migrate() to run at the next turn of the event loop.
    static void scheduleAtStartup();

private:
    static void migrateFromVersion2(const Stores &stores);
    static void migrateUser(const Stores &stores);
    static void migrateFailedEvents(const Stores &stores);
    static void moveImages(const QString &baseDirectory);
};

} // namespace ostrel
