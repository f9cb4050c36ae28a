#pragma once

#include <ostrel/OSTLifecycle.h>

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantMap>

class QGuiApplication;

namespace ostrel {

// Life-cycle notifications, posted on OSTNotificationCenter::defaultCenter() with the
// OSTApplication as object.
inline const QString OSTApplicationDidFinishLaunchingNotification =
    QStringLiteral("UIApplicationDidFinishLaunchingNotification");
inline const QString OSTApplicationDidBecomeActiveNotification =
    QStringLiteral("UIApplicationDidBecomeActiveNotification");
inline const QString OSTApplicationWillResignActiveNotification =
    QStringLiteral("UIApplicationWillResignActiveNotification");
inline const QString OSTApplicationDidEnterBackgroundNotification =
    QStringLiteral("UIApplicationDidEnterBackgroundNotification");
inline const QString OSTApplicationWillEnterForegroundNotification =
    QStringLiteral("UIApplicationWillEnterForegroundNotification");
inline const QString OSTApplicationWillTerminateNotification =
    QStringLiteral("UIApplicationWillTerminateNotification");

// User-info key of did-finish-launching under which a host passes its launch options, and the
// key inside that dictionary that holds the activity (here: the URL that opened the application).
inline const QString OSTApplicationLaunchOptionsUserActivityDictionaryKey =
    QStringLiteral("UIApplicationLaunchOptionsUserActivityDictionaryKey");
inline const QString OSTApplicationLaunchOptionsUserActivityKey =
    QStringLiteral("UIApplicationLaunchOptionsUserActivityKey");

// The application's life cycle as the SDK sees it. In automatic mode it follows Qt: the first
// turn of the event loop finishes launching, QGuiApplication::applicationStateChanged moves
// between active and background, and aboutToQuit terminates. Desktop platforms report only
// Active and Inactive, so anything but Active (no focus, minimised, every window hidden) is
// "resign active, then enter the background"; a brief focus change thus stays inside the session
// by the session delay. A QCoreApplication has no windows and is active once launched. The SDK
// may be started before the application object exists: following Qt then begins when it is made.
// No window shown (none visible, or all minimised) is the background whatever Qt reports.
// A host (or a test) may instead drive every step itself. Lives on, and must be driven from, the
// GUI thread.
class OSTApplication : public QObject {
    Q_OBJECT

public:
    using State = OSTApplicationState;
    using LifecycleSource = OSTLifecycleSource;

    // The one instance, created on first use.
    static OSTApplication &sharedApplication();
    // Chooses whether Qt's own application state drives the life cycle. Takes effect when the
    // shared instance is created, so call it before anything uses the SDK.
    static void setLifecycleSource(LifecycleSource source);
    // Whether the application has become active at least once since the SDK was loaded; until
    // then it is still starting (an experience asked for then is shown over a launch cover).
    static bool hasBecomeActiveOnce();

    State applicationState() const { return m_state; }
    bool hasFinishedLaunching() const { return m_finishedLaunching; }
    // The options did-finish-launching carried.
    const QVariantMap &launchOptions() const { return m_launchOptions; }

    // Posts did-finish-launching once; later calls do nothing.
    void finishLaunching(const QVariantMap &launchOptions = {});
    // The user info of did-finish-launching for the host's launch options.
    static QVariantMap launchOptionsUserInfo(const OSTLaunchOptions &options);
    // On a desktop a link opens an application as a command-line argument: the first http(s)
    // address among `arguments` (the program name skipped), or an empty URL. Followed by Qt, the
    // application finishes launching with it as the opened URL.
    static QUrl linkFromArguments(const QStringList &arguments);
    // Each moves to the named state, posting the notifications of every step on the way
    // (becoming active from the background first enters the foreground, for example).
    void becomeActive();
    void resignActive();
    void enterBackground();
    void enterForeground();
    // Posts will-terminate once.
    void terminate();
    // Moves to `state` with every step on the way.
    void moveTo(State target);

private:
    explicit OSTApplication(LifecycleSource source);

    // Called from the constructor of an application object made after the SDK was started.
    static void attachToQtApplication();
    void followQtApplication();
    void followGuiApplication(QGuiApplication *application);
    // Moves to the state Qt's application and its windows describe now.
    void followQtState();
    // Watches windows being shown, hidden and minimised, which the platform may not report as
    // an application state change.
    bool eventFilter(QObject *watched, QEvent *event) override;
    void post(const QString &name, const QVariantMap &userInfo = {});

    State m_state = State::Inactive;
    bool m_finishedLaunching = false;
    bool m_terminated = false;
    QVariantMap m_launchOptions;
};

} // namespace ostrel
