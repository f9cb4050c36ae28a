#pragma once

#include <ostrel/OSTError.h>

#include "platform/OSTClock.h"
#include "platform/OSTNotificationCenter.h"
#include "platform/OSTRetryBackoff.h"

#include <QMutex>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace ostrel {

// Holds the SDK token, sends the launch request "launch_v3" when the application finishes
// launching, hands the launch response to the other managers in a fixed order, keeps the work
// that waits for the launch, and turns the application's life cycle into sessions.
//
// One launch per process: whatever the host calls, "launch_v3" goes out once for the start of the
// process (later ones only for new sessions and resends). A launch that failed for the network
// is sent again when reachability turns reachable and, while reachability is unknown or already
// reachable, on a timer (5 s doubling to 5 min, spread ±20 %) until a request gets through.
//
// Lives for the whole process. Its state belongs to the GUI thread: start-up, life-cycle and
// reachability notifications arrive there, and launch completions are brought back there before
// they touch anything. executeAfterLaunch() and isInitialized() may be called from any thread.
class OSTServiceManager {
public:
    using LaunchBlock = std::function<void(bool success)>;
    using LaunchResponse = std::optional<QVariantMap>;

    // The managers that receive the launch response, in the order they receive it (after the
    // service manager itself).
    enum class LaunchResponseReceiver { Attribution, Events, Experience, Facebook, User, Count };

    // What other managers contribute to the launch request. Each is connected by its manager;
    // while one is missing, the request carries that value's default.
    struct LaunchParameterSources {
        std::function<QString()> advertisingIdentifier;   // default ""
        std::function<QVariantMap()> deviceFingerprint;   // default {"token": the SDK token}
        std::function<std::optional<QString>()> facebookAppID; // default: key left out
        std::function<QString()> currentUserID;           // default ""
        std::function<QVariantList()> cachedVersions;     // default: an empty array
        std::function<bool()> isLoggedIn;                 // default false
        std::function<bool()> isLoggedInLifetime;         // default false
        std::function<bool()> requiresLogin;              // default false
        // Whether a user activity found in the launch options is a link whose own request
        // launches the SDK; default false.
        std::function<bool(const QVariant &userActivity)> canHandleUserActivity;
        // Reports such a link to the service; its answer then launches (or cancels) the launch.
        std::function<void(const QVariant &userActivity)> continueUserActivity;
    };

    static constexpr double firstLaunchTimeout = 3.0;
    static constexpr double resendLaunchTimeout = 30.0;
    static constexpr double defaultSessionDelay = 900.0;
    static constexpr double defaultLaunchDelay = 7200.0;

    static OSTServiceManager &sharedManager();

    // --- Start-up -----------------------------------------------------------------------------
    // Takes the token (or, when empty, the main bundle's "OstrelToken") and starts observing the
    // application's life cycle. The launch request itself is sent on did-finish-launching.
    void startWithToken(const QString &token = {});
    static std::optional<QString> getTokenFromInfoPlist();
    std::optional<QString> token() const;
    bool isInitialized() const;
    // The SDK's own version.
    static QString version();

    // --- Launch -------------------------------------------------------------------------------
    void launch();
    enum class Delivery { FirstSend, Resend };
    void launchWithType(const QString &launchType, Delivery delivery);
    void sessionLaunch();
    // Returns whether the next activation would have sent a session launch, and cancels it.
    bool cancelSessionLaunch();
    void cancelLaunch();
    void invalidateLaunch();
    void processLaunchResponse(const LaunchResponse &response);
    // Hands a launch response (nothing after a failure) to the service manager itself, then to
    // every connected receiver in the order of LaunchResponseReceiver.
    void handOutLaunchResponse(const LaunchResponse &response);
    bool launched() const;
    bool launchedLifetime() const;
    // Runs `block` once the launch has finished, with whether the SDK is initialised; at once
    // (on the calling thread) when it already has.
    void executeAfterLaunch(LaunchBlock block);
    static bool shouldResendLaunchAfterError(const OSTError &error);

    // --- Connections to other managers -----------------------------------------------------------
    LaunchParameterSources &launchParameterSources() { return m_sources; }
    void connectLaunchResponseReceiver(LaunchResponseReceiver receiver,
                                       std::function<void(const LaunchResponse &)> handler);

    // --- Sessions -----------------------------------------------------------------------------
    double sessionDifference() const;
    double sessionDelay() const { return m_sessionDelay; }
    double launchDelay() const { return m_launchDelay; }
    void updateSessionDelayStart();
    void clearSessionDelayStart();

    // The local default experience document, the main bundle's "OSTDefault.json"; read once.
    static const std::optional<QVariantMap> &localDefault();

private:
    OSTServiceManager();

    void observeLifecycle();
    void didFinishLaunching(const OSTNotification &notification);
    // Launches now, unless the application was opened by a link whose own request will.
    void launchUnlessALinkWill(const QVariantMap &launchOptions);
    void didEnterBackground();
    void willEnterForeground();
    void didBecomeActive();
    void reachabilityDidChange();
    void scheduleResend(const QString &launchType);
    void scheduleResendTimer();
    void cancelResendTimer();
    void resendTimerDidFire();
    void resendPendingLaunch();
    void forgetResendAttempts();

    QVariantMap launchParameters(const QString &launchType, Delivery delivery) const;
    void launchDidComplete(const QString &launchType, double startTime, const LaunchResponse &response,
                           const std::optional<OSTError> &error);
    void finishLaunch(bool success);
    void fireLaunchBlocksWithSuccess(bool success);

    // Guards the token, which isInitialized() reads from any thread.
    mutable QMutex m_tokenMutex;
    std::optional<QString> m_token;
    bool m_observingLifecycle = false;
    bool m_firstLaunchSent = false;
    double m_launchDelay = defaultLaunchDelay;
    double m_sessionDelay = defaultSessionDelay;
    std::optional<QString> m_resendLaunchType;
    bool m_shouldSessionLaunchOnActivation = false;

    // Guards the launch state that executeAfterLaunch() reads from any thread.
    mutable QMutex m_launchMutex;
    bool m_launched = false;
    std::vector<LaunchBlock> m_launchBlocks;

    LaunchParameterSources m_sources;
    std::array<std::function<void(const LaunchResponse &)>,
               static_cast<size_t>(LaunchResponseReceiver::Count)> m_responseReceivers;

    OSTObserverToken m_didFinishLaunchingObserver = 0;
    OSTObserverToken m_reachabilityObserver = 0;

    OSTRetryBackoff m_resendBackoff;
    bool m_resendReportedSession = false;
    OSTTimerId m_resendTimer = 0;
    // Context of the resend timer: the GUI thread, where the launch state lives.
    std::unique_ptr<QObject> m_timerContext;
};

} // namespace ostrel
