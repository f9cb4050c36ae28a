#pragma once

#include <ostrel/OSTExport.h>

#include <ostrel/OSTAttribution.h>
#include <ostrel/OSTConstants.h>
#include <ostrel/OSTExperienceDelegate.h>
#include <ostrel/OSTExperienceSettings.h>
#include <ostrel/OSTLifecycle.h>
#include <ostrel/OSTLoggingLevel.h>
#include <ostrel/OSTUser.h>

#include <QString>
#include <QUrl>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <optional>

// Named only: a Qt Quick host includes no Qt Widgets header.
class QWidget;

namespace ostrel {

// The SDK's public entry point. Static functions only; each forwards to the manager that owns
// the work, so the facade itself keeps no state. Call from the GUI thread.
class OSTREL_EXPORT Ostrel {
public:
    Ostrel() = delete;

    // Names the folder that holds the host's Info.json and resources (the main bundle). Without
    // it, the folder of the host executable is used. Call before start().
    static void setMainBundlePath(const QString &path);

    // Starts the SDK with the token in the main bundle's Info.json ("OstrelToken"). Call once,
    // before QCoreApplication::exec() (before the application object exists is fine too): the
    // launch request is sent when the application has finished launching, the first turn of its
    // event loop. Started later, the SDK launches at once. One launch is sent per process,
    // however often this is called.
    static void start();
    // Starts the SDK with `token`; an empty token falls back to the Info.json key. Another token
    // later replaces the token but sends no second launch.
    static void startWithToken(const QString &token);

    // Chooses who reports the application's life cycle (see OSTLifecycleSource). Call before
    // start(); the default is OSTLifecycleSource::Automatic.
    static void setLifecycleSource(OSTLifecycleSource source);
    // With OSTLifecycleSource::Host: the application has finished launching, opened with
    // `options`. Only the first call counts.
    static void applicationDidFinishLaunching(const OSTLaunchOptions &options = {});
    // With OSTLifecycleSource::Host: the application is now in `state`; the steps in between
    // (for example entering the foreground on the way from the background to active) are implied.
    static void applicationDidChangeState(OSTApplicationState state);
    // With OSTLifecycleSource::Host: the application is about to quit.
    static void applicationWillTerminate();
    // Runs `block` once the SDK's launch has finished (at once if it already has), with whether
    // the SDK is started; false after the service refused the token.
    static void executeAfterLaunch(std::function<void(bool success)> block);

    // Records an event of the host's own, sent with the next batch (within about a minute, or
    // when the application goes to the background). Returns once the event is stored, so it
    // survives the process ending. Parameter values must be JSON values (strings, numbers,
    // booleans, lists, maps); others are left out with a warning. "ost_event_id" and
    // "event_type" are the SDK's own and replace the host's. Any thread.
    static void trackEventWithName(const QString &name, const QVariantMap &parameters = {});
    // Turns event reporting on or off, remembered across starts (default on). Off: nothing is
    // recorded, stored or sent and what was waiting is deleted; the SDK's own events are still
    // announced to the host (OSTEventFiredNotification, OSTEventEmitter).
    static void setEventsEnabled(bool enabled);
    static bool eventsEnabled();
    // Sends the waiting events now, for hosts that end sessions themselves.
    static void flushEvents();

    // --- Experiences ------------------------------------------------------------------------------
    // The host's answers to what experiences ask (see OSTExperienceDelegate). Held weakly: keep
    // the shared_ptr for as long as the delegate should be called.
    static void setExperienceDelegate(const std::shared_ptr<OSTExperienceDelegate> &delegate);
    // Shows an experience over the host once the launch has finished; the completion (if any)
    // tells whether it is on screen. Before start() nothing is shown and no completion comes.
    static void presentExperience();
    static void presentExperienceWithSettings(const OSTExperienceSettings &settings);
    static void presentExperienceWithCompletion(std::function<void(bool presented)> completion);
    static void presentExperienceWithSettings(const OSTExperienceSettings &settings,
                                              std::function<void(bool presented)> completion);
    static bool isPresentingExperience();
    static void dismissExperience();
    // The completion receives false when nothing was presented.
    static void dismissExperienceWithCompletion(std::function<void(bool dismissed)> completion);
    // Prepares the automatic experience without showing it: the completion receives it as a
    // widget the host then owns and shows itself, or nullptr when there is nothing to show.
    static void loadExperienceWithCompletion(std::function<void(QWidget *experience)> completion);
    // The same for an OSTExperienceType value.
    static void loadExperienceType(int type, std::function<void(QWidget *experience)> completion);

    // --- Attribution and links ---------------------------------------------------------------------
    // Hands the SDK a link the application was asked to open (for example, from its own
    // single-instance handling). Returns whether it is one of the service's links ("OstrelLinkHosts"
    // in Info.json, matching sub-domains too); the SDK then reports it and may open its deep link.
    // Links given on the command line or opened through QDesktopServices in this process arrive
    // without this call.
    static bool continueUserActivity(const QUrl &webpageURL,
                                     const QString &activityType = QStringLiteral("NSUserActivityTypeBrowsingWeb"));
    // Asks the service for a tracking link for `targeting` (sent upper-cased) carrying
    // `parameters`; the completion runs on the GUI thread with the link, or nullopt on failure.
    static void getLinkForTargeting(const QString &targeting, const std::optional<QVariantMap> &parameters,
                                    std::function<void(const std::optional<QString> &link)> completion);
    // Once the launch has finished: how the application was installed, and how it was last opened
    // by a link (the install attribution until a link reports otherwise). nullopt when unknown.
    static void getInstallAttributionWithCompletion(
        std::function<void(const std::optional<OSTAttribution> &attribution)> completion);
    static void getLatestAttributionWithCompletion(
        std::function<void(const std::optional<OSTAttribution> &attribution)> completion);
    // Whether the advertising identifier (from a registered OSTAdvertisingIdentifierSource) may be
    // sent; on by default.
    static bool shouldUseIDFA();
    static void setShouldUseIDFA(bool shouldUseIDFA);

    // --- The current user -------------------------------------------------------------------
    // Whether the application requires a logged-in user (default true, for this process only);
    // reported with every launch and used to choose the experience to show.
    static void setRequiresLogin(bool requiresLogin);
    // A copy of the current user as it is now.
    static OSTUser currentUser();
    // The user signed up or logged in, with the application's own identifier for the user (""
    // when none is given). The user's properties go to the service, which answers with the
    // properties it holds for that identifier; they are merged into the user.
    static void signUpUser();
    static void signUpUserWithID(const QString &userID);
    static void logInUser();
    static void logInUserWithID(const QString &userID);
    // Forgets the current user (identifier, name, properties); the installation stays one that
    // has seen a log-in.
    static void logOutUser();
    // Adds properties to the current user and sends them. Dates are sent as the SDK's timestamp
    // text; images (QImage) are saved in the SDK's folder as "<key>.png" and sent as that name;
    // other values must be strings, numbers, booleans, lists or maps, else they are left out
    // with a warning. Values equal to the current ones change nothing.
    static void appendUserProperties(const QVariantMap &properties);

    // Sets how much the SDK writes to standard error (see OSTLoggingLevel).
    static void setLoggingLevel(unsigned level);
    // The SDK's version, for example "3.0.0".
    static QString version();
};

// The framework's version symbols. The SDK itself reports Ostrel::version().
OSTREL_EXPORT extern const double OstrelVersionNumber;
OSTREL_EXPORT extern const unsigned char OstrelVersionString[];

} // namespace ostrel
