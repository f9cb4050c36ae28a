#include "network/OSTReachability.h"

#include <ostrel/OSTConstants.h>

#include "core/OSTLogging.h"
#include "platform/OSTMainQueue.h"
#include "platform/OSTNotificationCenter.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>

#include <mutex>

namespace ostrel {

namespace {

struct Reading {
    QMutex mutex;
    std::optional<std::uint32_t> flags;
};

Reading &currentReading()
{
    // Never destroyed: request threads read it until the process ends.
    static Reading *reading = new Reading;
    return *reading;
}

std::once_flag loadOnce;

std::optional<std::uint32_t> flagsOfNetworkInformation(const QNetworkInformation *information)
{
    if (!information)
        return std::nullopt;
    const bool portal = information->supports(QNetworkInformation::Feature::CaptivePortal)
        && information->isBehindCaptivePortal();
    return OSTReachability::flagsForNetworkState(information->reachability(), information->transportMedium(),
                                                 portal);
}

// NetworkManager knows the most; glib's monitor is there on most machines without it.
QNetworkInformation *loadBackend()
{
    for (const QString &backend : OSTReachability::preferredBackends()) {
        if (QNetworkInformation::loadBackendByName(backend))
            return QNetworkInformation::instance();
    }
    return nullptr;
}

void watchNetworkInformation()
{
    QNetworkInformation *information = loadBackend();
    if (!information) {
        OSTLogging::logInfo(QStringLiteral("Reachability source: none (no network information backend loads); "
                                           "the status stays unknown."));
        return;
    }
    OSTLogging::logInfo(QStringLiteral("Reachability source: the %1 network information backend."),
                        information->backendName());
    const auto refresh = [information] { OSTReachability::updateFlags(flagsOfNetworkInformation(information)); };
    QObject::connect(information, &QNetworkInformation::reachabilityChanged, information, refresh);
    QObject::connect(information, &QNetworkInformation::transportMediumChanged, information, refresh);
    QObject::connect(information, &QNetworkInformation::isBehindCaptivePortalChanged, information, refresh);
    QMutexLocker locker(&currentReading().mutex);
    currentReading().flags = flagsOfNetworkInformation(information);
}

// The class-load hook: watching begins with the host's event loop.
void scheduleLoad()
{
    QMetaObject::invokeMethod(QCoreApplication::instance(), [] { OSTReachability::load(); }, Qt::QueuedConnection);
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(scheduleLoad)

void OSTReachability::load()
{
    if (!OSTMainQueue::isCurrent())
        return;
    std::call_once(loadOnce, watchNetworkInformation);
}

QStringList OSTReachability::preferredBackends()
{
    return {QStringLiteral("networkmanager"), QStringLiteral("glib")};
}

OSTReachabilityStatus OSTReachability::status()
{
    if (OSTMainQueue::isCurrent())
        load();
    const std::optional<std::uint32_t> reading = flags();
    return reading ? statusForFlags(*reading) : OSTReachabilityStatusUnknown;
}

std::optional<std::uint32_t> OSTReachability::flags()
{
    QMutexLocker locker(&currentReading().mutex);
    return currentReading().flags;
}

OSTReachabilityStatus OSTReachability::statusForFlags(std::uint32_t flags)
{
    if (!(flags & OSTReachabilityFlagReachable))
        return OSTReachabilityStatusNotReachable;
    if (!(flags & OSTReachabilityFlagConnectionRequired))
        return OSTReachabilityStatusReachableViaWiFi;
    const bool connectsByItself = flags & (OSTReachabilityFlagConnectionOnTraffic | OSTReachabilityFlagConnectionOnDemand);
    if (connectsByItself && !(flags & OSTReachabilityFlagInterventionRequired))
        return OSTReachabilityStatusReachableViaWiFi;
    return (flags & OSTReachabilityFlagIsWWAN) ? OSTReachabilityStatusReachableViaWWAN : OSTReachabilityStatusUnknown;
}

std::optional<std::uint32_t> OSTReachability::flagsForNetworkState(QNetworkInformation::Reachability reachability,
                                                                   QNetworkInformation::TransportMedium medium,
                                                                   bool behindCaptivePortal)
{
    using R = QNetworkInformation::Reachability;
    switch (reachability) {
    case R::Unknown:
        return std::nullopt;
    case R::Disconnected:
        return 0u;
    case R::Local:
    case R::Site:
        return std::uint32_t{OSTReachabilityFlagConnectionRequired};
    case R::Online:
        break;
    }
    std::uint32_t flags = OSTReachabilityFlagReachable;
    if (medium == QNetworkInformation::TransportMedium::Cellular)
        flags |= OSTReachabilityFlagIsWWAN;
    if (behindCaptivePortal)
        flags |= OSTReachabilityFlagConnectionRequired | OSTReachabilityFlagInterventionRequired;
    return flags;
}

void OSTReachability::updateFlags(std::optional<std::uint32_t> flags)
{
    {
        QMutexLocker locker(&currentReading().mutex);
        if (currentReading().flags == flags)
            return;
        currentReading().flags = flags;
    }
    OSTMainQueue::async([] { OSTNotificationCenter::defaultCenter().post(OSTReachabilityDidChangeNotification); });
}

} // namespace ostrel
