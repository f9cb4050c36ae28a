#include "experience/OSTFlowManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "network/OSTImageManager.h"
#include "platform/OSTApplication.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString flowsKey = u"flows"_s;
const QString screensKey = u"screens"_s;
const QString jsonDataKey = u"json_data"_s;
const QString jsonVersionKey = u"json_version"_s;

// Characters left as they are when an image address is percent-encoded, besides letters and
// digits: those allowed in a URL's query.
const QByteArray queryAllowedCharacters = QByteArrayLiteral("!$&'()*+,/:;=?@");

// The "image" strings of the members of `container`, appended to `addresses`.
void appendImageAddresses(const QJsonObject &container, QStringList &addresses)
{
    for (const QJsonValue &member : container) {
        const QJsonValue image = member.toObject().value(u"image"_s);
        if (image.isString())
            addresses.append(image.toString());
    }
}

// Image addresses in the order they are preloaded: images, then each button's states, then
// inputs.
QStringList imageAddressesOf(const QJsonObject &screen)
{
    QStringList addresses;
    appendImageAddresses(screen.value(u"images"_s).toObject(), addresses);
    for (const QJsonValue &button : screen.value(u"buttons"_s).toObject())
        appendImageAddresses(button.toObject().value(u"states"_s).toObject(), addresses);
    appendImageAddresses(screen.value(u"inputs"_s).toObject(), addresses);
    return addresses;
}

// The screen metadata of the local default with its screen JSON as text, or nothing when the
// metadata or the JSON object is missing.
std::optional<QVariantMap> localScreenMetadata(const QVariant &metadata, const QVariant &screenJSON)
{
    if (metadata.typeId() != QMetaType::QVariantMap || screenJSON.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    QVariantMap screen = metadata.toMap();
    const QJsonDocument json(QJsonObject::fromVariantMap(screenJSON.toMap()));
    screen.insert(jsonDataKey, QString::fromUtf8(json.toJson(QJsonDocument::Compact)));
    return screen;
}

} // namespace

OSTFlowManager &OSTFlowManager::sharedManager()
{
    // Never destroyed: its queue cannot be stopped once the application object is gone. Pending
    // writes are finished when the application leaves the foreground or terminates instead.
    static OSTFlowManager *manager = new OSTFlowManager(OSTUserDefaultsManager::sharedManager());
    return *manager;
}

OSTFlowManager::OSTFlowManager(OSTUserDefaultsManager &settings)
    : m_settings(settings), m_cacheQueue(u"com.ostrelhq.flowManagerCacheQueue"_s)
{
    loadCachedFlowsAndScreens();
    for (const QString &notification :
         {OSTApplicationDidEnterBackgroundNotification, OSTApplicationWillTerminateNotification}) {
        m_lifecycleObservers.push_back(OSTNotificationCenter::defaultCenter().addObserver(
            notification, [this](const OSTNotification &) { synchronize(); }));
    }
}

OSTFlowManager::~OSTFlowManager()
{
    for (const OSTObserverToken observer : m_lifecycleObservers)
        OSTNotificationCenter::defaultCenter().removeObserver(observer);
}

void OSTFlowManager::loadCachedFlowsAndScreens()
{
    const QVariant flows = m_settings.objectForKey(flowsKey);
    const QVariant screens = m_settings.objectForKey(screensKey);
    const bool bothStored = flows.typeId() == QMetaType::QVariantMap && screens.typeId() == QMetaType::QVariantMap;
    QMutexLocker locker(&m_deliveryLock);
    if (screens.typeId() == QMetaType::QVariantMap)
        m_storedScreens = screens.toMap();
    if (!bothStored)
        return;
    registerScreens(m_storedScreens, OSTDocumentOrigin::Server);
    registerFlows(flows.toMap(), OSTDocumentOrigin::Server);
}

void OSTFlowManager::loadFlows(const QVariantMap &flows, const QVariantMap &screens)
{
    QMutexLocker locker(&m_deliveryLock);
    const QVariantMap completeScreens = updatedScreensFromCache(screens);
    registerScreens(completeScreens, OSTDocumentOrigin::Server);
    registerFlows(flows, OSTDocumentOrigin::Server);
    cacheFlows(flows, completeScreens);
}

void OSTFlowManager::loadLocalFlows(const QVariantMap &flows, const QVariantMap &screens)
{
    QMutexLocker locker(&m_deliveryLock);
    registerScreens(screens, OSTDocumentOrigin::Local);
    registerFlows(flows, OSTDocumentOrigin::Local);
}

bool OSTFlowManager::loadLaunchResponse(const QVariantMap &response)
{
    const QVariantMap flows = ost_dictionaryForKey(response, u"flow"_s).value_or(QVariantMap());
    const QVariantMap screens = ost_dictionaryForKey(response, u"splash_screen"_s).value_or(QVariantMap());
    if (flows.isEmpty() || screens.isEmpty())
        return false;
    loadFlows(flows, screens);
    return true;
}

bool OSTFlowManager::loadLocalDefault(const QVariantMap &document)
{
    const auto flows = ost_dictionaryForKey(document, u"flow"_s);
    const auto splash = ost_dictionaryForKey(document, u"splash"_s);
    const auto metadata = ost_dictionaryForKey(document, u"metadata"_s);
    if (!flows || !splash || !metadata) {
        OSTLogging::logDebug(u"The local default lacks \"flow\", \"splash\" or \"metadata\"; nothing of it is registered."_s);
        return false;
    }
    QVariantMap screens;
    const QVariantMap screenMetadata = ost_dictionaryForKey(*metadata, u"splash_screen"_s).value_or(QVariantMap());
    for (auto entry = screenMetadata.cbegin(); entry != screenMetadata.cend(); ++entry) {
        const auto screen = localScreenMetadata(entry.value(), splash->value(entry.key()));
        if (!screen) {
            OSTLogging::logWarning(u"The local default screen \"%1\" lacks its metadata or its \"splash\" object; "
                                   "nothing of the local default is registered."_s,
                                   entry.key());
            return false;
        }
        screens.insert(entry.key(), *screen);
    }
    loadLocalFlows(*flows, screens);
    return true;
}

std::shared_ptr<const OSTFlow> OSTFlowManager::flowForKey(const QString &key) const
{
    return tables().flows->value(key);
}

std::shared_ptr<const OSTScreen> OSTFlowManager::screenForKey(const QString &key) const
{
    return tables().screens->value(key);
}

std::shared_ptr<const OSTFlow> OSTFlowManager::localFlowForKey(const QString &key) const
{
    return tables().localFlows->value(key);
}

std::shared_ptr<const OSTScreen> OSTFlowManager::localScreenForKey(const QString &key) const
{
    return tables().localScreens->value(key);
}

QVariantList OSTFlowManager::cachedVersions() const
{
    QVariantList versions;
    for (const auto &screen : *tables().screens)
        versions.append(screen->jsonVersion());
    return versions;
}

void OSTFlowManager::preloadImagesForScreen(const OSTScreen &screen)
{
    const QJsonDocument json = QJsonDocument::fromJson(screen.json().toUtf8());
    if (!json.isObject())
        return;
    for (const QString &address : imageAddressesOf(json.object())) {
        const QByteArray encoded = QUrl::toPercentEncoding(address, queryAllowedCharacters);
        const QUrl url = QUrl::fromEncoded(encoded, QUrl::StrictMode);
        if (encoded.isEmpty() || !url.isValid()) {
            OSTLogging::logDebug(u"The image address \"%1\" of screen \"%2\" is not a URL; its remaining images are "
                                 "not preloaded."_s,
                                 address, screen.key());
            return;
        }
        OSTImageManager::sharedManager().preloadImageWithURL(url);
    }
}

void OSTFlowManager::synchronize() const
{
    m_cacheQueue.sync([] {});
}

void OSTFlowManager::registerScreens(const QVariantMap &screens, OSTDocumentOrigin origin)
{
    const bool local = origin == OSTDocumentOrigin::Local;
    ScreenTable table = local ? *tables().localScreens : *tables().screens;
    for (auto entry = screens.cbegin(); entry != screens.cend(); ++entry) {
        if (entry.value().typeId() != QMetaType::QVariantMap)
            continue;
        auto screen = std::make_shared<OSTScreen>(entry.key(), entry.value().toMap(), origin);
        table.insert(entry.key().toLower(), screen);
        preloadImagesForScreen(*screen);
    }
    auto published = std::make_shared<const ScreenTable>(std::move(table));
    QMutexLocker locker(&m_tableLock);
    (local ? m_tables.localScreens : m_tables.screens) = std::move(published);
}

void OSTFlowManager::registerFlows(const QVariantMap &flows, OSTDocumentOrigin origin)
{
    const bool local = origin == OSTDocumentOrigin::Local;
    const Tables current = tables();
    FlowTable table = local ? *current.localFlows : *current.flows;
    const ScreenTable &screens = local ? *current.localScreens : *current.screens;
    for (auto entry = flows.cbegin(); entry != flows.cend(); ++entry) {
        if (entry.value().typeId() == QMetaType::QVariantMap)
            table.insert(entry.key().toLower(), makeFlow(entry.key(), entry.value().toMap(), origin, screens));
    }
    auto published = std::make_shared<const FlowTable>(std::move(table));
    QMutexLocker locker(&m_tableLock);
    (local ? m_tables.localFlows : m_tables.flows) = std::move(published);
}

std::shared_ptr<OSTFlow> OSTFlowManager::makeFlow(const QString &key, const QVariantMap &metadata,
                                                  OSTDocumentOrigin origin, const ScreenTable &screens) const
{
    auto flow = std::make_shared<OSTFlow>(key, metadata, origin);
    OSTFlow::Screens steps;
    for (const QString &screenKey : flow->screenKeys()) {
        if (const auto screen = screens.value(screenKey))
            steps.push_back(screen);
        else
            OSTLogging::logDebug(u"Screen data missing! (%1)"_s, screenKey);
    }
    flow->setScreens(steps);
    for (const auto &screen : steps)
        screen->setFlow(flow);
    return flow;
}

QVariantMap OSTFlowManager::updatedScreensFromCache(const QVariantMap &screens) const
{
    if (m_storedScreens.isEmpty())
        return screens;
    QVariantMap updated;
    for (auto entry = screens.cbegin(); entry != screens.cend(); ++entry) {
        if (entry.value().typeId() != QMetaType::QVariantMap)
            continue;
        QVariantMap metadata = entry.value().toMap();
        if (ost_stringForKey(metadata, jsonDataKey)) {
            updated.insert(entry.key(), metadata);
            continue;
        }
        const auto version = ost_stringForKey(metadata, jsonVersionKey);
        if (!version)
            continue;
        for (const QVariant &stored : m_storedScreens) {
            const QVariantMap storedMetadata = stored.toMap();
            if (ost_stringForKey(storedMetadata, jsonVersionKey) != version)
                continue;
            ost_safeSetObject(metadata, storedMetadata.value(jsonDataKey), jsonDataKey);
            updated.insert(entry.key(), metadata);
            break;
        }
    }
    return updated;
}

void OSTFlowManager::cacheFlows(const QVariantMap &flows, const QVariantMap &screens)
{
    m_storedScreens = screens;
    m_cacheQueue.async([this, flows, screens] {
        m_settings.setObject(flows, flowsKey);
        m_settings.setObject(screens, screensKey);
    });
}

OSTFlowManager::Tables OSTFlowManager::tables() const
{
    QMutexLocker locker(&m_tableLock);
    return m_tables;
}

} // namespace ostrel
