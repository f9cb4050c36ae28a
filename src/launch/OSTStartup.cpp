#include "launch/OSTStartup.h"

#include "core/OSTDateFormatter.h"
#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTEventManager.h"
#include "events/OSTEventSources.h"
#include "events/OSTStatisticalEvent.h"
#include "experience/OSTExperienceManager.h"
#include "experience/OSTExperienceToolkits.h"
#include "experience/OSTFlowManager.h"
#include "experience/OSTLinkedToolkits.h"
#include "launch/OSTMigration.h"
#include "launch/OSTServiceManager.h"
#include "model/OSTPhoneNumberManager.h"
#include "network/OSTNetworkStatistics.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTMainQueue.h"
#include "platform/OSTURLOpener.h"
#include "users/OSTAttributionManager.h"
#include "users/OSTFacebookManager.h"
#include "users/OSTUserManager.h"

#include <QCoreApplication>
#include <QDateTime>

#include <atomic>
#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

std::atomic<bool> managersConnected = false;

OSTStatisticalEvent::TimingType timingTypeFor(OSTNetworkStatistics::Outcome outcome)
{
    switch (outcome) {
    case OSTNetworkStatistics::Outcome::Success:
        return OSTStatisticalEvent::Success;
    case OSTNetworkStatistics::Outcome::Timeout:
        return OSTStatisticalEvent::Timeout;
    case OSTNetworkStatistics::Outcome::Failure:
        break;
    }
    return OSTStatisticalEvent::Failure;
}

// A host that starts the SDK late still has the old version's data carried over before its own
// code reads anything through the SDK.
void migrateAtApplicationStart()
{
    OSTMigration::scheduleAtStartup();
}
Q_COREAPP_STARTUP_FUNCTION(migrateAtApplicationStart)

} // namespace

bool OSTStartup::prepareProcess()
{
    static std::once_flag once;
    std::call_once(once, [] {
        reportBundleProblems();
        connectNetworkStatistics();
        // Managers own threads and timers, which need the application object: a host that
        // starts the SDK before making it gets them from its constructor.
        if (!QCoreApplication::instance())
            qAddPreRoutine(&OSTStartup::connectManagersOnce);
    });
    if (managersConnected.load(std::memory_order_acquire))
        return true;
    if (!QCoreApplication::instance())
        return false;
    // Outside the once-lock above, so a GUI thread arriving meanwhile does the work instead of
    // waiting for a caller that waits for it.
    OSTMainQueue::sync(&OSTStartup::connectManagersOnce);
    return managersConnected.load(std::memory_order_acquire);
}

void OSTStartup::connectManagersOnce()
{
    static std::once_flag once;
    std::call_once(once, &OSTStartup::connectManagers);
    managersConnected.store(true, std::memory_order_release);
}

void OSTStartup::connectManagers()
{
    // Before any manager reads the stores, so they find the carried-over data; and after the
    // application object exists, whose names place the stores.
    OSTMigration::migrate();
    OSTApplication::sharedApplication();
    OSTRequestManager::sharedManager();
    // The launch response goes to the service manager itself first, then to each receiver below,
    // in the order of OSTServiceManager::LaunchResponseReceiver.
    OSTServiceManager::sharedManager();
    connectEventManager();
    connectAttributionManager();
    connectExperienceManager();
    connectFacebookManager();
    connectUserManager();
    connectPhoneNumberVerification();
}

void OSTStartup::connectExperienceManager()
{
    OSTExperienceManager &experience = OSTExperienceManager::sharedManager();
    experience.initLocalDefault(OSTServiceManager::localDefault());
    OSTServiceManager &service = OSTServiceManager::sharedManager();
    experience.connectLaunchState({
        .isStartedOrLaunched = [&service] { return service.launched() || service.isInitialized(); },
        .isLaunchedLifetime = [&service] { return service.launchedLifetime(); },
    });
    connectUserToExperience();
    OSTLinkedToolkits::install();
    experience.setPresenter(OSTExperienceToolkits::shared());
    OSTFlowManager &flows = OSTFlowManager::sharedManager();
    service.launchParameterSources().cachedVersions = [&flows] { return flows.cachedVersions(); };
    service.connectLaunchResponseReceiver(
        OSTServiceManager::LaunchResponseReceiver::Experience,
        [&experience](const OSTServiceManager::LaunchResponse &response) { experience.processLaunchResponse(response); });
}

void OSTStartup::connectUserToExperience()
{
    OSTExperienceManager &experience = OSTExperienceManager::sharedManager();
    OSTUserManager &users = OSTUserManager::sharedManager();
    experience.connectUserState({
        .isLoggedIn = [&users] { return users.isLoggedIn(); },
        .requiresLogin = [&users] { return users.requiresLogin(); },
        .isLoggedInLifetime = [&users] { return users.isLoggedInLifetime(); },
    });
    // The user's properties are screen variables (those kept from the last run at once); a log-out
    // leaves none of them behind.
    experience.appendDynamicVariables(users.currentUser().properties());
    QObject::connect(&users, &OSTUserManager::propertiesChanged, &users,
                     [&experience](const QVariantMap &properties) { experience.appendDynamicVariables(properties); });
    QObject::connect(&users, &OSTUserManager::didLogOut, &users, [&experience] { experience.cleanDynamicVariables(); });
    users.connectCurrentScreenSource([&experience] { return experience.currentScreen(); });
}

void OSTStartup::connectAttributionManager()
{
    OSTServiceManager &service = OSTServiceManager::sharedManager();
    OSTAttributionManager &attribution = OSTAttributionManager::sharedManager();
    attribution.connectServices({
        .sdkToken = [&service] { return service.token(); },
        .formatTimestamp =
            [](double secondsSince1970) {
                return ost_timestampFormatter().stringFromDate(
                    QDateTime::fromMSecsSinceEpoch(qint64(secondsSince1970 * 1000.0), Qt::UTC));
            },
        .appendDynamicVariables =
            [](const QVariantMap &variables, const QString &prefix) {
                OSTExperienceManager &experience = OSTExperienceManager::sharedManager();
                if (prefix.isEmpty())
                    experience.appendDynamicVariables(variables);
                else
                    experience.appendDynamicVariables(variables, prefix);
            },
        .currentUserProperties = [] { return OSTUserManager::sharedManager().currentUser().properties(); },
        .launched = [&service] { return service.launched(); },
        .executeAfterLaunch = [&service](std::function<void(bool)> block) { service.executeAfterLaunch(std::move(block)); },
        .cancelSessionLaunch = [&service] { return service.cancelSessionLaunch(); },
        .cancelLaunch = [&service] { service.cancelLaunch(); },
        .invalidateLaunch = [&service] { service.invalidateLaunch(); },
        .launch = [&service] { service.launch(); },
        .sessionLaunch = [&service] { service.sessionLaunch(); },
    });

    OSTServiceManager::LaunchParameterSources &sources = service.launchParameterSources();
    sources.deviceFingerprint = [&attribution] { return attribution.deviceFingerprint(); };
    sources.advertisingIdentifier = [&attribution] { return attribution.advertisingIdentifierString().value_or(QString()); };
    // A link that opened the application arrives as the launch options' activity, an address.
    sources.canHandleUserActivity = [&attribution](const QVariant &activity) {
        return attribution.canHandleUserActivity(OSTUserActivityTypeBrowsingWeb, activity.toUrl());
    };
    sources.continueUserActivity = [&attribution](const QVariant &activity) {
        attribution.continueUserActivity(OSTUserActivityTypeBrowsingWeb, activity.toUrl());
    };
    service.connectLaunchResponseReceiver(
        OSTServiceManager::LaunchResponseReceiver::Attribution,
        [&attribution](const OSTServiceManager::LaunchResponse &response) { attribution.processLaunchResponse(response); });
    connectAttributionToEvents();
    receiveLinks();
}

void OSTStartup::connectAttributionToEvents()
{
    const auto forEvents = [](const std::optional<OSTAttribution> &record) -> std::optional<OSTEventSources::Attribution> {
        if (!record)
            return std::nullopt;
        return OSTEventSources::Attribution{record->sourceName, record->targetingID, record->targetingName};
    };
    OSTAttributionManager &attribution = OSTAttributionManager::sharedManager();
    OSTEventSources::Sources sources = OSTEventSources::current();
    sources.deviceFingerprint = [&attribution] { return attribution.deviceFingerprint(); };
    sources.advertiserID = [&attribution] { return attribution.advertisingIdentifierString(); };
    sources.installAttribution = [&attribution, forEvents] { return forEvents(attribution.installAttribution()); };
    sources.latestAttribution = [&attribution, forEvents] { return forEvents(attribution.latestAttribution()); };
    OSTEventSources::connect(std::move(sources));
}

void OSTStartup::receiveLinks()
{
    // Links the host process opens through QDesktopServices reach the SDK first; others go on to
    // the desktop.
    if (OSTAttributionManager::linkHosts().isEmpty())
        return;
    OSTURLOpener::setLinkReceiver([](const QUrl &url) {
        return OSTAttributionManager::sharedManager().continueUserActivity(OSTUserActivityTypeBrowsingWeb, url);
    });
}

void OSTStartup::connectPhoneNumberVerification()
{
    OSTPhoneNumberManager::connectTokenSource([] { return OSTServiceManager::sharedManager().token(); });
}

void OSTStartup::reportBundleProblems()
{
    if (const QString problem = OSTBundle::mainBundle()->infoDictionaryError(); !problem.isEmpty())
        OSTLogging::logError(u"The main bundle's Info.json could not be read: %1"_s, problem);
}

void OSTStartup::connectNetworkStatistics()
{
    OSTNetworkStatistics::connectReporter({
        [](const QUrl &url) { OSTEventHook::sendEvent(OSTStatisticalEvent::internalServerErrorEvent(url)); },
        [](const QUrl &url, double seconds, OSTNetworkStatistics::Outcome outcome) {
            OSTEventHook::sendEvent(OSTStatisticalEvent::imageDownloadEvent(url, seconds, timingTypeFor(outcome)));
        },
    });
}

void OSTStartup::connectEventManager()
{
    // The attribution and advertising sources join when their manager exists.
    OSTEventSources::connect({
        .sdkToken = [] { return OSTServiceManager::sharedManager().token(); },
        .userID = [&users = OSTUserManager::sharedManager()] { return users.currentUser().userID(); },
        .userName = [&users = OSTUserManager::sharedManager()] { return users.currentUser().name(); },
    });
    OSTEventManager &events = OSTEventManager::sharedManager();
    OSTEventHook::addReceiver([&events](const std::shared_ptr<const OSTEvent> &event) { events.sendEvent(event); });
    OSTServiceManager::sharedManager().connectLaunchResponseReceiver(
        OSTServiceManager::LaunchResponseReceiver::Events,
        [&events](const OSTServiceManager::LaunchResponse &response) { events.processLaunchResponse(response); });
}

void OSTStartup::connectFacebookManager()
{
    OSTFacebookManager &facebook = OSTFacebookManager::sharedManager();
    OSTServiceManager &service = OSTServiceManager::sharedManager();
    service.launchParameterSources().facebookAppID = [&facebook] { return facebook.facebookAppID(); };
    service.connectLaunchResponseReceiver(OSTServiceManager::LaunchResponseReceiver::Facebook,
                                          [&facebook](const OSTServiceManager::LaunchResponse &response) {
                                              facebook.processLaunchResponse(response);
                                          });
}

void OSTStartup::connectUserManager()
{
    OSTUserManager &users = OSTUserManager::sharedManager();
    OSTServiceManager::LaunchParameterSources &sources = OSTServiceManager::sharedManager().launchParameterSources();
    sources.currentUserID = [&users] { return users.currentUser().userID().value_or(QString()); };
    sources.isLoggedIn = [&users] { return users.isLoggedIn(); };
    sources.isLoggedInLifetime = [&users] { return users.isLoggedInLifetime(); };
    sources.requiresLogin = [&users] { return users.requiresLogin(); };
    OSTServiceManager::sharedManager().connectLaunchResponseReceiver(
        OSTServiceManager::LaunchResponseReceiver::User,
        [&users](const OSTServiceManager::LaunchResponse &response) { users.processLaunchResponse(response); });
}

} // namespace ostrel
