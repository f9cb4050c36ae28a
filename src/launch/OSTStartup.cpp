#include "launch/OSTStartup.h"

#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTEventManager.h"
#include "events/OSTEventSources.h"
#include "events/OSTStatisticalEvent.h"
#include "experience/OSTFlowManager.h"
#include "input/OSTPhoneNumberManager.h"
#include "launch/OSTServiceManager.h"
#include "network/OSTNetworkStatistics.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"

#include <QCoreApplication>

#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

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

} // namespace

void OSTStartup::prepareProcess()
{
    static std::once_flag once;
    std::call_once(once, [] {
        reportBundleProblems();
        connectNetworkStatistics();
        // Managers own threads and timers, which need the application object: a host that
        // starts the SDK before making it gets them from its constructor.
        qAddPreRoutine(&OSTStartup::connectManagers);
    });
}

void OSTStartup::connectManagers()
{
    OSTApplication::sharedApplication();
    OSTRequestManager::sharedManager();
    // The launch response goes to the service manager itself first, then to each receiver below,
    // in the order of OSTServiceManager::LaunchResponseReceiver.
    OSTServiceManager::sharedManager();
    connectEventManager();
    connectFlowRegistry();
    connectPhoneNumberVerification();
}

void OSTStartup::connectFlowRegistry()
{
    // Until the experience manager exists, the registry takes the experience document directly:
    // the local default at start, then each launch response.
    OSTFlowManager &flows = OSTFlowManager::sharedManager();
    if (const auto &localDefault = OSTServiceManager::localDefault())
        flows.loadLocalDefault(*localDefault);
    OSTServiceManager &service = OSTServiceManager::sharedManager();
    service.launchParameterSources().cachedVersions = [&flows] { return flows.cachedVersions(); };
    service.connectLaunchResponseReceiver(OSTServiceManager::LaunchResponseReceiver::Experience,
                                          [&flows](const OSTServiceManager::LaunchResponse &response) {
                                              if (response)
                                                  flows.loadLaunchResponse(*response);
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
    // The user, attribution and advertising sources join when their managers exist.
    OSTEventSources::connect({.sdkToken = [] { return OSTServiceManager::sharedManager().token(); }});
    OSTEventManager &events = OSTEventManager::sharedManager();
    OSTEventHook::addReceiver([&events](const std::shared_ptr<const OSTEvent> &event) { events.sendEvent(event); });
    OSTServiceManager::sharedManager().connectLaunchResponseReceiver(
        OSTServiceManager::LaunchResponseReceiver::Events,
        [&events](const OSTServiceManager::LaunchResponse &response) { events.processLaunchResponse(response); });
}

} // namespace ostrel
