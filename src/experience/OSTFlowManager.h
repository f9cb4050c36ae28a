#pragma once

#include "experience/OSTFlow.h"
#include "experience/OSTScreen.h"
#include "platform/OSTNotificationCenter.h"
#include "platform/OSTSerialQueue.h"

#include <QMap>
#include <QMutex>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <memory>
#include <vector>

namespace ostrel {

class OSTUserDefaultsManager;

// The registry of the experience document: the flows and screens delivered by the service (and
// cached between runs) and those of the local default file, each filed under its lower-cased key.
// New deliveries merge into what is registered; nothing is forgotten within a run. The service's
// last delivery is kept in the settings store ("flows", "screens") so that the next launch can
// list the screen versions it holds and the service may leave their JSON out.
//
// Thread-safe. Each table is immutable and replaced whole, so a reader on any thread sees either
// the table before a delivery or the one after it. Deliveries are registered one at a time on the
// calling thread; writing the delivery to the settings store happens on a queue of its own, so
// that a large delivery does not hold up the GUI thread.
class OSTFlowManager {
public:
    using FlowTable = QMap<QString, std::shared_ptr<const OSTFlow>>;
    using ScreenTable = QMap<QString, std::shared_ptr<OSTScreen>>;

    // Created on first use, with the delivery cached by the previous run registered.
    static OSTFlowManager &sharedManager();

    // Registers the delivery cached in `settings`, which must outlive the manager.
    explicit OSTFlowManager(OSTUserDefaultsManager &settings);
    // Finishes writing the last delivery to the settings store (as does the application's
    // entering the background or terminating).
    ~OSTFlowManager();

    OSTFlowManager(const OSTFlowManager &) = delete;
    OSTFlowManager &operator=(const OSTFlowManager &) = delete;

    // A delivery of the service: screens (re-using cached JSON by "json_version") before flows,
    // then persisted.
    void loadFlows(const QVariantMap &flows, const QVariantMap &screens);
    // The local default: registered, never persisted.
    void loadLocalFlows(const QVariantMap &flows, const QVariantMap &screens);
    // The "flow" and "splash_screen" objects of a launch response, when both have a member.
    // Returns whether they were registered.
    bool loadLaunchResponse(const QVariantMap &response);
    // The local default file ("flow", "splash" with each screen's JSON as an object, "metadata"
    // with "splash_screen"), all or nothing: one screen lacking its metadata or its JSON and none
    // of it is registered. Returns whether it was registered.
    bool loadLocalDefault(const QVariantMap &document);

    // Lookups use the key exactly as given; registered keys are lower-case.
    bool hasFlowForKey(const QString &key) const { return flowForKey(key) != nullptr; }
    std::shared_ptr<const OSTFlow> flowForKey(const QString &key) const;
    bool hasScreenForKey(const QString &key) const { return screenForKey(key) != nullptr; }
    std::shared_ptr<const OSTScreen> screenForKey(const QString &key) const;
    bool hasLocalFlowForKey(const QString &key) const { return localFlowForKey(key) != nullptr; }
    std::shared_ptr<const OSTFlow> localFlowForKey(const QString &key) const;
    bool hasLocalScreenForKey(const QString &key) const { return localScreenForKey(key) != nullptr; }
    std::shared_ptr<const OSTScreen> localScreenForKey(const QString &key) const;

    // The "json_version" of every server screen, in key order, duplicates kept.
    QVariantList cachedVersions() const;

    // Asks the image manager to preload the images the screen's JSON names, stopping at the first
    // address that cannot be made into a URL.
    static void preloadImagesForScreen(const OSTScreen &screen);

    // Waits until the last delivery has been written to the settings store.
    void synchronize() const;

private:
    // The four tables of one moment.
    struct Tables {
        std::shared_ptr<const FlowTable> flows = std::make_shared<const FlowTable>();
        std::shared_ptr<const ScreenTable> screens = std::make_shared<const ScreenTable>();
        std::shared_ptr<const FlowTable> localFlows = std::make_shared<const FlowTable>();
        std::shared_ptr<const ScreenTable> localScreens = std::make_shared<const ScreenTable>();
    };

    void loadCachedFlowsAndScreens();
    void registerScreens(const QVariantMap &screens, OSTDocumentOrigin origin);
    void registerFlows(const QVariantMap &flows, OSTDocumentOrigin origin);
    std::shared_ptr<OSTFlow> makeFlow(const QString &key, const QVariantMap &metadata, OSTDocumentOrigin origin,
                                      const ScreenTable &screens) const;
    QVariantMap updatedScreensFromCache(const QVariantMap &screens) const;
    void cacheFlows(const QVariantMap &flows, const QVariantMap &screens);
    Tables tables() const;

    OSTUserDefaultsManager &m_settings;

    // Held for a whole registration, so deliveries merge one after the other.
    QMutex m_deliveryLock;
    // The screens last written to the store (what the store holds once the queue has run).
    QVariantMap m_storedScreens;

    // Held only to read or swap the table pointers.
    mutable QMutex m_tableLock;
    Tables m_tables;

    std::vector<OSTObserverToken> m_lifecycleObservers;
    // Declared last: destroyed first, finishing the writes while the rest is still there.
    const OSTSerialQueue m_cacheQueue;
};

} // namespace ostrel
