#include "launch/OSTServiceManager.h"

#include <ostrel/OSTConstants.h>

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "core/OSTUserDefaultsManager.h"
#include "events/OSTEventHook.h"
#include "events/OSTInternalEvent.h"
#include "events/OSTStatisticalEvent.h"
#include "network/OSTReachability.h"
#include "network/OSTRequestManager.h"
#include "platform/OSTApplication.h"
#include "platform/OSTBundle.h"
#include "platform/OSTClock.h"
#include "platform/OSTMainQueue.h"

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString launchedLifetimeKey = u"launchedLifetime"_s;
const QString sessionDelayStartKey = u"session_delay_start"_s;
const QString launchEndpoint = u"launch_v3"_s;

OSTUserDefaultsManager &defaults()
{
    return OSTUserDefaultsManager::sharedManager();
}

int timingTypeFor(const std::optional<OSTError> &error)
{
    if (!error)
        return OSTStatisticalEvent::Success;
    return error->is(NSURLErrorDomain, -1001) ? OSTStatisticalEvent::Timeout : OSTStatisticalEvent::Failure;
}

} // namespace

OSTServiceManager &OSTServiceManager::sharedManager()
{
    static OSTServiceManager *manager = new OSTServiceManager();
    return *manager;
}

OSTServiceManager::OSTServiceManager() : m_timerContext(std::make_unique<QObject>())
{
    if (const QCoreApplication *application = QCoreApplication::instance())
        m_timerContext->moveToThread(application->thread());
}

// --- Start-up ---------------------------------------------------------------------------------

void OSTServiceManager::startWithToken(const QString &token)
{
    std::optional<QString> chosen = token.isEmpty() ? getTokenFromInfoPlist() : std::optional(token);
    if (!chosen) {
        OSTLogging::logError(u"Missing SDK Token. Please either add it to your Info.plist, or pass it "
                             u"as a parameter!"_s);
        return;
    }
    {
        QMutexLocker locker(&m_tokenMutex);
        if (chosen == m_token) {
            locker.unlock();
            OSTLogging::logWarning(u"The SDK is already initialized."_s);
            return;
        }
        m_token = chosen;
    }
    OSTLogging::logInfo(u"The SDK is initialized. Current version is: %1"_s, version());
    // Another token later only replaces the token: observing twice would launch twice.
    if (!std::exchange(m_observingLifecycle, true))
        observeLifecycle();
}

std::optional<QString> OSTServiceManager::token() const
{
    QMutexLocker locker(&m_tokenMutex);
    return m_token;
}

bool OSTServiceManager::isInitialized() const
{
    QMutexLocker locker(&m_tokenMutex);
    return m_token.has_value();
}

std::optional<QString> OSTServiceManager::getTokenFromInfoPlist()
{
    const auto token = ost_stringForKey(OSTBundle::mainBundle()->infoDictionary(), u"OstrelToken"_s);
    if (!token || token->isEmpty())
        return std::nullopt;
    return token;
}

QString OSTServiceManager::version()
{
    return QStringLiteral(OSTREL_VERSION_STRING);
}

void OSTServiceManager::observeLifecycle()
{
    OSTNotificationCenter &center = OSTNotificationCenter::defaultCenter();
    m_didFinishLaunchingObserver = center.addObserver(
        OSTApplicationDidFinishLaunchingNotification,
        [this](const OSTNotification &notification) { didFinishLaunching(notification); });
    center.addObserver(OSTApplicationDidEnterBackgroundNotification,
                       [this](const OSTNotification &) { didEnterBackground(); });
    center.addObserver(OSTApplicationWillEnterForegroundNotification,
                       [this](const OSTNotification &) { willEnterForeground(); });
    center.addObserver(OSTApplicationDidBecomeActiveNotification,
                       [this](const OSTNotification &) { didBecomeActive(); });
    // Creating the application object is what makes Qt's life cycle reach the observers. A host
    // that starts the SDK after launching has finished still gets its launch.
    const OSTApplication &application = OSTApplication::sharedApplication();
    if (application.hasFinishedLaunching()) {
        OSTLogging::logInfo(u"The SDK was started after the application finished launching; launching now."_s);
        center.removeObserver(std::exchange(m_didFinishLaunchingObserver, 0));
        launchUnlessALinkWill(application.launchOptions());
    }
}

// --- Launch -----------------------------------------------------------------------------------

void OSTServiceManager::launch()
{
    if (std::exchange(m_firstLaunchSent, true)) {
        OSTLogging::logDebug(u"The launch of this process was already sent."_s);
        return;
    }
    QString launchType = u"install"_s;
    if (launchedLifetime()) {
        const bool loggedIn = m_sources.isLoggedIn && m_sources.isLoggedIn();
        launchType = loggedIn ? u"launch"_s : u"logged_out"_s;
    }
    launchWithType(launchType, Delivery::FirstSend);
}

void OSTServiceManager::launchWithType(const QString &launchType, Delivery delivery)
{
    // Retrying a failed launch repeats its request, not its session: only the first resend
    // reports a session start, as the single resend on reachability always did.
    const bool reportsSession = delivery == Delivery::FirstSend || !std::exchange(m_resendReportedSession, true);
    if (reportsSession) {
        OSTEventHook::sendEvent(OSTInternalEvent::sessionStartedEvent(
            sessionDifference(), OSTInternalEvent::SessionKind::Launch));
        clearSessionDelayStart();
    }

    const QVariantMap parameters = launchParameters(launchType, delivery);
    OSTLogging::logInfo(u"Sending launch request."_s);
    const double startTime = OSTClock::current().monotonicNow();
    const double timeout = delivery == Delivery::Resend ? resendLaunchTimeout : firstLaunchTimeout;
    OSTRequestManager::sharedManager().apiRequestWithEndpoint(
        launchEndpoint, parameters, timeout,
        [this, launchType, startTime](const LaunchResponse &response, const std::optional<OSTError> &error) {
            // Completions arrive on the network queue; the launch state belongs to the GUI thread.
            OSTMainQueue::async([this, launchType, startTime, response, error] {
                launchDidComplete(launchType, startTime, response, error);
            });
        });
}

QVariantMap OSTServiceManager::launchParameters(const QString &launchType, Delivery delivery) const
{
    QVariantMap parameters;
    parameters.insert(u"launch_type"_s, launchType);
    parameters.insert(u"advertiser_id"_s,
                      m_sources.advertisingIdentifier ? m_sources.advertisingIdentifier() : QString());
    // Until the device fingerprint is connected the service still needs the token to know us.
    const QVariantMap fingerprint = m_sources.deviceFingerprint
        ? m_sources.deviceFingerprint()
        : QVariantMap{{u"token"_s, token().value_or(QString())}};
    parameters.insert(fingerprint);
    if (m_sources.facebookAppID) {
        if (const auto facebookAppID = m_sources.facebookAppID())
            parameters.insert(u"fb_app_id"_s, *facebookAppID);
    }
    parameters.insert(u"user_id"_s, m_sources.currentUserID ? m_sources.currentUserID() : QString());
    parameters.insert(u"cached_versions"_s,
                      m_sources.cachedVersions ? m_sources.cachedVersions() : QVariantList());
    parameters.insert(u"logged_in_lifetime"_s, m_sources.isLoggedInLifetime && m_sources.isLoggedInLifetime());
    parameters.insert(u"ost_resend"_s, delivery == Delivery::Resend);
    parameters.insert(u"requires_login"_s, m_sources.requiresLogin && m_sources.requiresLogin());
    return parameters;
}

void OSTServiceManager::launchDidComplete(const QString &launchType, double startTime,
                                          const LaunchResponse &response, const std::optional<OSTError> &error)
{
    const double elapsed = OSTClock::current().monotonicNow() - startTime;
    if (error && shouldResendLaunchAfterError(*error))
        scheduleResend(launchType);
    else if (!m_resendLaunchType)
        forgetResendAttempts();
    OSTEventHook::sendEvent(OSTStatisticalEvent::launchEvent(elapsed, timingTypeFor(error)));

    if (error && error->is(NSURLErrorDomain, 401)) {
        invalidateLaunch();
        return;
    }
    handOutLaunchResponse(error ? LaunchResponse() : response);
    // A launch that failed for lack of network still releases the waiting work: the experience
    // then comes from the cache or the local default.
    finishLaunch(true);
}

void OSTServiceManager::handOutLaunchResponse(const LaunchResponse &response)
{
    processLaunchResponse(response);
    for (const auto &receiver : m_responseReceivers) {
        if (receiver)
            receiver(response);
    }
}

void OSTServiceManager::processLaunchResponse(const LaunchResponse &response)
{
    if (!response)
        return;
    // "nan" or "inf" from the service would make every comparison with the delays false.
    m_launchDelay = ost_finiteDouble(ost_numberForKey(*response, u"session_delay_cap"_s)).value_or(defaultLaunchDelay);
    m_sessionDelay = ost_finiteDouble(ost_numberForKey(*response, u"session_delay"_s)).value_or(defaultSessionDelay);
}

void OSTServiceManager::sessionLaunch()
{
    launchWithType(u"launch"_s, Delivery::FirstSend);
}

bool OSTServiceManager::cancelSessionLaunch()
{
    return std::exchange(m_shouldSessionLaunchOnActivation, false);
}

void OSTServiceManager::cancelLaunch()
{
    if (!launched())
        finishLaunch(false);
}

void OSTServiceManager::invalidateLaunch()
{
    if (launched())
        return;
    OSTLogging::logError(u"Invalid token. Aborting launch sequence."_s);
    {
        QMutexLocker locker(&m_tokenMutex);
        m_token.reset();
    }
    finishLaunch(false);
}

bool OSTServiceManager::launched() const
{
    QMutexLocker locker(&m_launchMutex);
    return m_launched;
}

bool OSTServiceManager::launchedLifetime() const
{
    return defaults().boolForKey(launchedLifetimeKey);
}

void OSTServiceManager::finishLaunch(bool success)
{
    {
        QMutexLocker locker(&m_launchMutex);
        m_launched = true;
    }
    defaults().setBool(true, launchedLifetimeKey);
    fireLaunchBlocksWithSuccess(success);
}

void OSTServiceManager::executeAfterLaunch(LaunchBlock block)
{
    {
        QMutexLocker locker(&m_launchMutex);
        if (!m_launched) {
            m_launchBlocks.push_back(std::move(block));
            return;
        }
    }
    block(isInitialized());
}

void OSTServiceManager::fireLaunchBlocksWithSuccess(bool success)
{
    OSTMainQueue::sync([this, success] {
        std::vector<LaunchBlock> blocks;
        {
            QMutexLocker locker(&m_launchMutex);
            blocks.swap(m_launchBlocks);
        }
        for (const LaunchBlock &block : blocks)
            block(success);
    });
}

bool OSTServiceManager::shouldResendLaunchAfterError(const OSTError &error)
{
    static constexpr std::array resendCodes{-1009, -1008, -1006, -1005, -1004, -1003, -1001};
    return error.domain == NSURLErrorDomain
        && std::find(resendCodes.begin(), resendCodes.end(), error.code) != resendCodes.end();
}

void OSTServiceManager::connectLaunchResponseReceiver(LaunchResponseReceiver receiver,
                                                      std::function<void(const LaunchResponse &)> handler)
{
    m_responseReceivers.at(static_cast<size_t>(receiver)) = std::move(handler);
}

// --- Resend --------------------------------------------------------------------------------------

void OSTServiceManager::scheduleResend(const QString &launchType)
{
    m_resendLaunchType = launchType;
    if (!m_reachabilityObserver) {
        m_reachabilityObserver = OSTNotificationCenter::defaultCenter().addObserver(
            OSTReachabilityDidChangeNotification, [this](const OSTNotification &) { reachabilityDidChange(); });
    }
    // A change of reachability may never come: the network was fine and the service was not, or
    // nothing reports the network at all. The timer covers both.
    if (OSTReachability::status() != OSTReachabilityStatusNotReachable)
        scheduleResendTimer();
}

void OSTServiceManager::forgetResendAttempts()
{
    m_resendBackoff.reset();
    m_resendReportedSession = false;
}

void OSTServiceManager::scheduleResendTimer()
{
    if (m_resendTimer)
        return;
    const double wait = m_resendBackoff.nextWait();
    OSTLogging::logDebug(u"The launch will be sent again in %1 seconds."_s, wait);
    m_resendTimer = OSTClock::current().schedule(wait, m_timerContext.get(), [this] { resendTimerDidFire(); });
}

void OSTServiceManager::cancelResendTimer()
{
    if (const OSTTimerId timer = std::exchange(m_resendTimer, 0))
        OSTClock::current().cancel(timer);
}

void OSTServiceManager::resendTimerDidFire()
{
    m_resendTimer = 0;
    // Without a network the change to reachable sends it; there is no point in trying before.
    if (OSTReachability::status() != OSTReachabilityStatusNotReachable)
        resendPendingLaunch();
}

void OSTServiceManager::reachabilityDidChange()
{
    if (OSTReachability::status() == OSTReachabilityStatusNotReachable) {
        cancelResendTimer();
        return;
    }
    resendPendingLaunch();
}

void OSTServiceManager::resendPendingLaunch()
{
    cancelResendTimer();
    OSTNotificationCenter::defaultCenter().removeObserver(std::exchange(m_reachabilityObserver, 0));
    if (const auto launchType = std::exchange(m_resendLaunchType, std::nullopt))
        launchWithType(*launchType, Delivery::Resend);
}

// --- Sessions ---------------------------------------------------------------------------------

double OSTServiceManager::sessionDifference() const
{
    const QVariant start = defaults().numberForKey(sessionDelayStartKey);
    const double startTime = ost_isNumber(start) ? start.toDouble() : 0.0;
    return startTime > 0 ? OSTClock::current().now() - startTime : 0.0;
}

void OSTServiceManager::updateSessionDelayStart()
{
    defaults().setNumber(OSTClock::current().now(), sessionDelayStartKey);
}

void OSTServiceManager::clearSessionDelayStart()
{
    defaults().removeObjectForKey(sessionDelayStartKey);
}

void OSTServiceManager::didFinishLaunching(const OSTNotification &notification)
{
    OSTNotificationCenter::defaultCenter().removeObserver(std::exchange(m_didFinishLaunchingObserver, 0));
    launchUnlessALinkWill(notification.userInfo);
}

void OSTServiceManager::launchUnlessALinkWill(const QVariantMap &launchOptions)
{
    const QVariantMap activityOptions =
        ost_dictionaryForKey(launchOptions, OSTApplicationLaunchOptionsUserActivityDictionaryKey)
            .value_or(QVariantMap());
    const QVariant userActivity = activityOptions.value(OSTApplicationLaunchOptionsUserActivityKey);
    if (userActivity.isValid() && m_sources.canHandleUserActivity
        && m_sources.canHandleUserActivity(userActivity)) {
        // The link's own request launches the SDK.
        if (m_sources.continueUserActivity)
            m_sources.continueUserActivity(userActivity);
        return;
    }
    launch();
}

void OSTServiceManager::didEnterBackground()
{
    updateSessionDelayStart();
}

void OSTServiceManager::willEnterForeground()
{
    const double difference = sessionDifference();
    if (difference < m_sessionDelay) {
        clearSessionDelayStart();
        return;
    }
    const bool isLaunch = difference > m_launchDelay;
    OSTEventHook::sendEvent(OSTInternalEvent::sessionStartedEvent(
        difference, isLaunch ? OSTInternalEvent::SessionKind::Launch : OSTInternalEvent::SessionKind::Foreground));
    clearSessionDelayStart();
    m_shouldSessionLaunchOnActivation = isLaunch;
}

void OSTServiceManager::didBecomeActive()
{
    // The flag stays set: only cancelSessionLaunch() and the next qualifying return change it.
    if (m_shouldSessionLaunchOnActivation)
        sessionLaunch();
}

// --- Local default ------------------------------------------------------------------------------

const std::optional<QVariantMap> &OSTServiceManager::localDefault()
{
    static const std::optional<QVariantMap> document = []() -> std::optional<QVariantMap> {
        const QString path = OSTBundle::mainBundle()->pathForResource(u"OSTDefault"_s, u"json"_s);
        if (path.isEmpty()) {
            OSTLogging::logWarning(u"No local default JSON found."_s);
            return std::nullopt;
        }
        QFile file(path);
        const QJsonDocument json = file.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(file.readAll())
                                                                  : QJsonDocument();
        if (!json.isObject()) {
            OSTLogging::logError(u"The local default JSON could not be serialized!"_s);
            return std::nullopt;
        }
        return json.object().toVariantMap();
    }();
    return document;
}

} // namespace ostrel
