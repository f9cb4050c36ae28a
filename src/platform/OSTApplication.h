#pragma once

#include <QObject>
#include <QString>
#include <QVariantMap>

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

// User-info key of did-finish-launching under which a host passes its launch options.
inline const QString OSTApplicationLaunchOptionsUserActivityDictionaryKey =
    QStringLiteral("UIApplicationLaunchOptionsUserActivityDictionaryKey");

// The application's life cycle as the SDK sees it. In automatic mode it follows Qt: the first
// turn of the event loop finishes launching, QGuiApplication::applicationStateChanged moves
// between active, inactive and background, and aboutToQuit terminates. A host (or a test) may
// also drive every step itself. Lives on, and must be driven from, the GUI thread.
class OSTApplication : public QObject {
    Q_OBJECT

public:
    enum class State { Active, Inactive, Background };
    enum class LifecycleSource { Automatic, Manual };

    // The one instance, created on first use.
    static OSTApplication &sharedApplication();
    // Chooses whether Qt's own application state drives the life cycle. Takes effect when the
    // shared instance is created, so call it before anything uses the SDK.
    static void setLifecycleSource(LifecycleSource source);

    State applicationState() const { return m_state; }
    bool hasFinishedLaunching() const { return m_finishedLaunching; }

    // Posts did-finish-launching once; later calls do nothing.
    void finishLaunching(const QVariantMap &launchOptions = {});
    // Each moves to the named state, posting the notifications of every step on the way
    // (becoming active from the background first enters the foreground, for example).
    void becomeActive();
    void resignActive();
    void enterBackground();
    void enterForeground();
    // Posts will-terminate once.
    void terminate();

private:
    explicit OSTApplication(LifecycleSource source);

    void followQtApplication();
    void moveTo(State target);
    void post(const QString &name, const QVariantMap &userInfo = {});

    State m_state = State::Inactive;
    bool m_finishedLaunching = false;
    bool m_terminated = false;
};

} // namespace ostrel
