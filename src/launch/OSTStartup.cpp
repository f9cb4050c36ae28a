#include "launch/OSTStartup.h"

#include "core/OSTLogging.h"
#include "events/OSTEventHook.h"
#include "events/OSTStatisticalEvent.h"
#include "experience/OSTFlowManager.h"
#include "launch/OSTServiceManager.h"
#include "network/OSTNetworkStatistics.h"
#include "platform/OSTBundle.h"

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
        connectNetworkStatistics();
        OSTServiceManager::sharedManager().launchParameterSources().cachedVersions = [] {
            return QVariant(OSTFlowManager::sharedManager().cachedVersions());
        };
        reportBundleProblems();
    });
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

} // namespace ostrel
