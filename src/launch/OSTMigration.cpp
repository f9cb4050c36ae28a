#include "launch/OSTMigration.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTFileManager.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "events/OSTEventManager.h"
#include "launch/OSTServiceManager.h"
#include "platform/OSTDefaultsStore.h"
#include "platform/OSTPropertyListArchive.h"
#include "users/OSTUserArchive.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QMetaObject>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString versionMarkerKey = u"lastMigratedVersion"_s;
const QString dataDomain = u"com.ostrelhq.sdk.data"_s;
const QString eventDomain = u"com.ostrelhq.sdk.event"_s;
const QString oldImagesFolder = u"ost_images"_s;
const QString imagesFolder = u"images"_s;
const QString cacheDirectoryTagName = u"CACHEDIR.TAG"_s;

// The dictionary archived under the domain's own key, when there is one.
std::optional<QVariantMap> archivedDictionary(const OSTDefaultsStore &store, const QString &domain)
{
    const QVariant value = store.persistentDomain(domain).value_or(QVariantMap()).value(domain);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    const std::optional<QVariant> unarchived = OSTPropertyListArchive::unarchive(value.toByteArray());
    if (!unarchived || unarchived->typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return unarchived->toMap();
}

bool numberIsTrue(const QVariantMap &dictionary, const QString &key)
{
    const QVariant number = ost_numberForKey(dictionary, key);
    return number.isValid() && number.toDouble() != 0.0;
}

OSTUser userOfVersion2(const QVariantMap &data)
{
    OSTUser user;
    const QVariant archivedProperties = data.value(u"ost_user_properties"_s);
    if (archivedProperties.typeId() == QMetaType::QByteArray) {
        const auto properties = OSTPropertyListArchive::unarchive(archivedProperties.toByteArray());
        if (properties && properties->typeId() == QMetaType::QVariantMap)
            user.appendUserProperties(properties->toMap());
    }
    user.setLastViewedVariation(ost_stringForKey(data, u"ost_viewed_variation"_s));
    user.setUserID(ost_stringForKey(data, u"ost_user_id"_s));
    user.setName(ost_stringForKey(data, u"ost_name"_s));
    if (const auto abTests = ost_arrayForKey(data, u"ost_ab_test"_s)) {
        QList<OSTUserABNTest> tests;
        for (const QVariant &entry : *abTests) {
            if (auto test = OSTUserABNTest::fromProperties(entry))
                tests.append(*test);
        }
        user.setActiveABNTests(tests);
    }
    return user;
}

// The folder the file manager made before anything was stored in it: only its cache tag.
bool isUntouchedImagesFolder(const QDir &folder)
{
    const QStringList entries = folder.entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    return entries.isEmpty() || entries == QStringList{cacheDirectoryTagName};
}

} // namespace

void OSTMigration::migrate()
{
    migrate({OSTDefaultsStore::standardStore(), OSTUserDefaultsManager::sharedManager(),
             OSTFileManager::defaultBaseDirectory()},
            OSTServiceManager::version());
}

void OSTMigration::migrate(const Stores &stores, const QString &currentVersion)
{
    const QVariant lastMigratedVersion = stores.defaults.objectForKey(versionMarkerKey);
    if (lastMigratedVersion == currentVersion)
        return;
    if (!lastMigratedVersion.isValid() && stores.store.persistentDomain(dataDomain))
        migrateFromVersion2(stores);
    stores.defaults.setObject(currentVersion, versionMarkerKey);
}

void OSTMigration::scheduleAtStartup()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), [] { OSTMigration::migrate(); }, Qt::QueuedConnection);
}

void OSTMigration::migrateFromVersion2(const Stores &stores)
{
    // A version-2 user is no new installation: the next launch is "launch" or "logged_out".
    stores.defaults.setBool(true, u"launchedLifetime"_s);
    migrateUser(stores);
    migrateFailedEvents(stores);
    moveImages(stores.baseDirectory);
    OSTLogging::logInfo(u"Migrated data from SDK version 2."_s);
}

void OSTMigration::migrateUser(const Stores &stores)
{
    const std::optional<QVariantMap> data = archivedDictionary(stores.store, dataDomain);
    if (!data)
        return;
    stores.defaults.setBool(numberIsTrue(*data, u"ost_logged_in"_s), u"loggedIn"_s);
    stores.defaults.setBool(numberIsTrue(*data, u"ost_logged_in_lifetime"_s), u"loggedInLifetime"_s);
    stores.defaults.setObject(OSTUserArchive::archive(userOfVersion2(*data)), u"currentUser"_s);
}

void OSTMigration::migrateFailedEvents(const Stores &stores)
{
    const std::optional<QVariantMap> events = archivedDictionary(stores.store, eventDomain);
    if (!events)
        return;
    const QVariantList failedEvents = ost_arrayForKey(*events, u"ost_failed_event_queue"_s).value_or(QVariantList());
    stores.defaults.setObject(QVariantMap{{u"events"_s, failedEvents}}, OSTEventManager::archivedRequestsKey);
}

void OSTMigration::moveImages(const QString &baseDirectory)
{
    QDir base(baseDirectory);
    if (!base.exists(oldImagesFolder))
        return;
    // The file manager makes an empty "images" whenever it starts; that one may give way.
    if (QDir images(base.filePath(imagesFolder)); images.exists() && isUntouchedImagesFolder(images))
        images.removeRecursively();
    if (!base.rename(oldImagesFolder, imagesFolder))
        return;
    // A file manager over the folder tags "images" as a cache that backups skip.
    OSTFileManager tagger(baseDirectory);
}

} // namespace ostrel
