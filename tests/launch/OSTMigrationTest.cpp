// Carrying over what version 2 of the SDK left on a device. The old stores are written by the
// tests through the settings store, as version 2's domains; one test starts the SDK on them
// against ostrel-devserver, the others run the migration on private stores.

#include <ostrel/Ostrel.h>

#include "core/OSTFileManager.h"
#include "core/OSTUserDefaultsManager.h"
#include "events/OSTEventJournal.h"
#include "events/OSTEventManager.h"
#include "experience/OSTExperienceManager.h"
#include "launch/OSTMigration.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTDefaultsStore.h"
#include "platform/OSTPropertyListArchive.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"
#include "users/OSTUserArchive.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

const QString dataDomain = u"com.ostrelhq.sdk.data"_s;
const QString eventDomain = u"com.ostrelhq.sdk.event"_s;

QVariantMap version2Data()
{
    return {
        {u"ost_logged_in"_s, 1},
        {u"ost_logged_in_lifetime"_s, 1},
        {u"ost_user_properties"_s, OSTPropertyListArchive::archive(QVariantMap{{u"plan"_s, u"gold"_s}})},
        {u"ost_viewed_variation"_s, u"v4"_s},
        {u"ost_user_id"_s, u"v2-user"_s},
        {u"ost_name"_s, u"Ada"_s},
        {u"ost_ab_test"_s, QVariantList{QVariantMap{{u"test_name"_s, u"colour"_s}, {u"variation"_s, u"b"_s}}, 3}},
    };
}

QVariantMap failedEvent(const QString &identifier)
{
    return {{u"ost_event_id"_s, identifier}, {u"event_type"_s, u"old event"_s}, {u"sequence"_s, 1}};
}

// Writes a version-2 domain: the archived value under the domain's own key.
void writeVersion2Domain(OSTDefaultsStore &store, const QString &domain, const QVariant &value)
{
    store.setPersistentDomain(domain, {{domain, value}});
}

QVariant archived(const QVariant &value)
{
    return OSTPropertyListArchive::archive(value);
}

// Private stores and a private base folder for one migration.
struct PrivateStores {
    QTemporaryDir folder;
    OSTDefaultsStore store{folder.filePath(u"store.sqlite"_s)};
    OSTUserDefaultsManager defaults{store, OSTUserDefaultsManager::domainName};
    QString baseDirectory = folder.filePath(u"base"_s);

    void migrate(const QString &version = u"3.0.0"_s) { OSTMigration::migrate({store, defaults, baseDirectory}, version); }
    QVariantMap sdkDomain() const { return store.persistentDomain(OSTUserDefaultsManager::domainName).value_or(QVariantMap()); }
    void writeOldImage(const QString &name) const { test::writeFile(baseDirectory + u"/ost_images/"_s + name, "png"); }
};

} // namespace

TEST(Migration, AVersion2DeviceLaunchesAsKnownWithItsUserEventsAndImages)
{
    OSTDefaultsStore &store = OSTDefaultsStore::standardStore();
    writeVersion2Domain(store, dataDomain, archived(version2Data()));
    writeVersion2Domain(store, eventDomain,
                        archived(QVariantMap{{u"ost_failed_event_queue"_s,
                                              QVariantList{failedEvent(u"OLD-1"_s), failedEvent(u"OLD-2"_s)}}}));
    const QString baseDirectory = OSTFileManager::defaultBaseDirectory();
    test::writeFile(baseDirectory + u"/ost_images/hero.png"_s, "png bytes");

    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    QTemporaryDir bundle;
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::start();
    OSTApplication::sharedApplication().finishLaunching();
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests(u"launch_v3"_s).size() == 1; }));

    const QVariantMap launch = server.recordedRequests(u"launch_v3"_s).first().parameters;
    EXPECT_EQ(launch.value(u"launch_type"_s), u"launch"_s) << "a logged-in version-2 user is no new installation";
    EXPECT_EQ(launch.value(u"user_id"_s), u"v2-user"_s);
    EXPECT_EQ(launch.value(u"logged_in_lifetime"_s), true);

    const OSTUser user = Ostrel::currentUser();
    EXPECT_EQ(user.userID(), u"v2-user"_s);
    EXPECT_EQ(user.name(), u"Ada"_s);
    EXPECT_EQ(user.lastViewedVariation(), u"v4"_s);
    EXPECT_EQ(user.properties().value(u"plan"_s), u"gold"_s);
    EXPECT_EQ(user.activeABNTests(), (QList<OSTUserABNTest>{OSTUserABNTest(u"colour"_s, u"b"_s)}));

    Ostrel::flushEvents();
    const auto storedIdentifiers = [&] {
        QStringList identifiers;
        for (const QVariantMap &event : server.storedEvents())
            identifiers.append(event.value(u"ost_event_id"_s).toString());
        return identifiers;
    };
    ASSERT_TRUE(test::waitUntil([&] { return storedIdentifiers().contains(u"OLD-2"_s); }));
    EXPECT_TRUE(storedIdentifiers().contains(u"OLD-1"_s));

    EXPECT_TRUE(QFile::exists(baseDirectory + u"/images/hero.png"_s));
    EXPECT_TRUE(QFile::exists(baseDirectory + u"/images/CACHEDIR.TAG"_s)) << "tagged as a cache backups skip";
    EXPECT_FALSE(QDir(baseDirectory + u"/ost_images"_s).exists());

    // A second run in the same version changes nothing, even when the old stores change.
    writeVersion2Domain(store, dataDomain, archived(QVariantMap{{u"ost_user_id"_s, u"someone-else"_s}}));
    OSTMigration::migrate();
    const QVariant stored = OSTUserDefaultsManager::sharedManager().objectForKey(u"currentUser"_s);
    EXPECT_EQ(OSTUserArchive::unarchive(stored.toByteArray()).value_or(OSTUser()).userID(), u"v2-user"_s);
}

TEST(Migration, AFreshInstallationOrAnUpdatedOneIsOnlyMarked)
{
    PrivateStores fresh;
    fresh.migrate();
    EXPECT_EQ(fresh.sdkDomain(), (QVariantMap{{u"lastMigratedVersion"_s, u"3.0.0"_s}}));
    EXPECT_FALSE(QDir(fresh.baseDirectory + u"/images"_s).exists());

    // A device that already ran a version of this SDK is never migrated again.
    PrivateStores updated;
    writeVersion2Domain(updated.store, dataDomain, archived(version2Data()));
    updated.defaults.setObject(u"3.0.0"_s, u"lastMigratedVersion"_s);
    updated.migrate(u"3.1.0"_s);
    EXPECT_EQ(updated.sdkDomain(), (QVariantMap{{u"lastMigratedVersion"_s, u"3.1.0"_s}}));
}

TEST(Migration, MalformedOldDataIsSkippedPieceByPiece)
{
    const struct {
        const char *what;
        QVariant data;
        std::optional<QVariant> events;
        bool userWritten;
        QVariant archivedEvents;
    } cases[] = {
        {"data that is no archive", u"garbage"_s, std::nullopt, false, {}},
        {"an archive of a list", archived(QVariantList{1}), std::nullopt, false, {}},
        {"an event store without a queue", archived(QVariantMap()), archived(QVariantMap()), true,
         QVariantMap{{u"events"_s, QVariantList()}}},
        {"a queue that is not a list", archived(QVariantMap()), archived(QVariantMap{{u"ost_failed_event_queue"_s, 5}}),
         true, QVariantMap{{u"events"_s, QVariantList()}}},
        {"an event store that is no archive", archived(QVariantMap()), QByteArray("junk"), true, {}},
    };
    for (const auto &testCase : cases) {
        PrivateStores stores;
        writeVersion2Domain(stores.store, dataDomain, testCase.data);
        if (testCase.events)
            writeVersion2Domain(stores.store, eventDomain, *testCase.events);
        stores.migrate();
        const QVariantMap domain = stores.sdkDomain();
        EXPECT_EQ(domain.value(u"launchedLifetime"_s), true) << testCase.what;
        EXPECT_EQ(domain.contains(u"currentUser"_s), testCase.userWritten) << testCase.what;
        EXPECT_EQ(domain.value(OSTEventManager::archivedRequestsKey), testCase.archivedEvents) << testCase.what;
    }

    // Values of the wrong type read as absent; numbers may be numeric text.
    PrivateStores mixed;
    writeVersion2Domain(mixed.store, dataDomain,
                        archived(QVariantMap{{u"ost_logged_in"_s, u"1"_s},
                                             {u"ost_logged_in_lifetime"_s, u"no"_s},
                                             {u"ost_user_id"_s, 5},
                                             {u"ost_name"_s, u"Ada"_s},
                                             {u"ost_user_properties"_s, QByteArray("not an archive")},
                                             {u"ost_ab_test"_s, u"none"_s}}));
    mixed.migrate();
    const QVariantMap domain = mixed.sdkDomain();
    EXPECT_EQ(domain.value(u"loggedIn"_s), true);
    EXPECT_EQ(domain.value(u"loggedInLifetime"_s), false);
    const OSTUser user = OSTUserArchive::unarchive(domain.value(u"currentUser"_s).toByteArray()).value_or(OSTUser());
    EXPECT_FALSE(user.userID().has_value());
    EXPECT_EQ(user.name(), u"Ada"_s);
    EXPECT_TRUE(user.properties().isEmpty());
    EXPECT_TRUE(user.activeABNTests().isEmpty());
}

TEST(Migration, TheImagesFolderMovesOnlyOverAnUntouchedOne)
{
    PrivateStores untouched;
    writeVersion2Domain(untouched.store, dataDomain, archived(QVariantMap()));
    untouched.writeOldImage(u"a.png"_s);
    const OSTFileManager preparedFolders(untouched.baseDirectory); // makes an empty, tagged "images"
    untouched.migrate();
    EXPECT_TRUE(QFile::exists(untouched.baseDirectory + u"/images/a.png"_s));

    PrivateStores occupied;
    writeVersion2Domain(occupied.store, dataDomain, archived(QVariantMap()));
    occupied.writeOldImage(u"a.png"_s);
    test::writeFile(occupied.baseDirectory + u"/images/b.png"_s, "png");
    occupied.migrate();
    EXPECT_TRUE(QFile::exists(occupied.baseDirectory + u"/images/b.png"_s)) << "newer images are kept";
    EXPECT_TRUE(QFile::exists(occupied.baseDirectory + u"/ost_images/a.png"_s)) << "the failed move is left alone";
    EXPECT_EQ(occupied.sdkDomain().value(u"lastMigratedVersion"_s), u"3.0.0"_s);
}

TEST(Migration, AFirstCallFromAWorkerThreadMeetsMigratedStoresAndManagersOfTheGuiThread)
{
    writeVersion2Domain(OSTDefaultsStore::standardStore(), dataDomain, archived(version2Data()));
    writeVersion2Domain(OSTDefaultsStore::standardStore(), eventDomain,
                        archived(QVariantMap{{u"ost_failed_event_queue"_s, QVariantList{failedEvent(u"OLD-1"_s)}}}));

    const std::unique_ptr<QThread> worker(QThread::create([] { Ostrel::setEventsEnabled(true); }));
    worker->start();
    ASSERT_TRUE(test::waitUntil([&] { return worker->isFinished(); })) << "the worker waits for the GUI thread";

    const std::vector<OSTEventJournal::Record> stored = OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll();
    EXPECT_TRUE(std::any_of(stored.begin(), stored.end(),
                            [](const OSTEventJournal::Record &record) { return record.json.contains("OLD-1"); }))
        << "the version-2 event was carried over";
    OSTUserManager &users = OSTUserManager::sharedManager();
    EXPECT_EQ(users.thread(), QCoreApplication::instance()->thread());
    EXPECT_EQ(Ostrel::currentUser().name(), u"Ada"_s);

    OSTExperienceManager &experience = OSTExperienceManager::sharedManager();
    Ostrel::appendUserProperties({{u"colour"_s, u"teal"_s}});
    EXPECT_TRUE(test::waitUntil([&] { return experience.dynamicVariables().contains(u"colour"_s); }));
    Ostrel::logOutUser();
    EXPECT_TRUE(test::waitUntil([&] { return experience.dynamicVariables().isEmpty(); }));
}
