#include "platform/OSTApplication.h"

#include "platform/OSTNotificationCenter.h"

#include <QEvent>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <atomic>

namespace ostrel {

namespace {

std::atomic<OSTApplication::LifecycleSource> requestedSource{OSTApplication::LifecycleSource::Automatic};

// False while the application is starting; set by the first did-become-active after the SDK was
// loaded. The observer is registered when the library is loaded, so no activation is missed.
std::atomic<bool> applicationBecameActive{false};

struct FirstActivationObserver {
    FirstActivationObserver()
    {
        OSTNotificationCenter &center = OSTNotificationCenter::defaultCenter();
        token = center.addObserver(OSTApplicationDidBecomeActiveNotification, [this](const OSTNotification &) {
            applicationBecameActive.store(true);
            OSTNotificationCenter::defaultCenter().removeObserver(token);
        });
    }
    OSTObserverToken token = 0;
};

const FirstActivationObserver firstActivationObserver;

// Desktop platforms report Inactive for what a phone calls the background (no focus, minimised,
// no window shown), so only Active counts as being in the foreground.
OSTApplication::State stateFromQt(Qt::ApplicationState state)
{
    return state == Qt::ApplicationActive ? OSTApplication::State::Active : OSTApplication::State::Background;
}

bool isShown(const QWindow *window)
{
    return window->isVisible() && !(window->windowStates() & Qt::WindowMinimized);
}

bool hasShownWindow()
{
    const QWindowList windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), isShown);
}

// A QCoreApplication has no windows: once launched it is always active.
OSTApplication::State qtState(Qt::ApplicationState state)
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return OSTApplication::State::Active;
    return hasShownWindow() ? stateFromQt(state) : OSTApplication::State::Background;
}

OSTApplication::State currentQtState()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return OSTApplication::State::Active;
    return qtState(QGuiApplication::applicationState());
}

bool changesWindowVisibility(const QObject *watched, const QEvent *event)
{
    const QEvent::Type type = event->type();
    return (type == QEvent::Show || type == QEvent::Hide || type == QEvent::WindowStateChange)
        && watched->isWindowType();
}

} // namespace

bool OSTApplication::hasBecomeActiveOnce()
{
    return applicationBecameActive.load();
}

OSTApplication &OSTApplication::sharedApplication()
{
    static OSTApplication *application = new OSTApplication(requestedSource.load());
    return *application;
}

void OSTApplication::setLifecycleSource(LifecycleSource source)
{
    requestedSource.store(source);
}

OSTApplication::OSTApplication(LifecycleSource source)
{
    if (source != LifecycleSource::Automatic)
        return;
    if (QCoreApplication::instance())
        followQtApplication();
    else // a host that starts the SDK before making its application object
        qAddPreRoutine(&OSTApplication::attachToQtApplication);
}

QVariantMap OSTApplication::launchOptionsUserInfo(const OSTLaunchOptions &options)
{
    if (!options.openedURL.isValid())
        return {};
    return {{OSTApplicationLaunchOptionsUserActivityDictionaryKey,
             QVariantMap{{OSTApplicationLaunchOptionsUserActivityKey, options.openedURL}}}};
}

QUrl OSTApplication::linkFromArguments(const QStringList &arguments)
{
    for (const QString &argument : arguments.mid(1)) {
        const QUrl url(argument, QUrl::StrictMode);
        if (url.isValid() && (url.scheme() == QLatin1StringView("http") || url.scheme() == QLatin1StringView("https")) && !url.host().isEmpty())
            return url;
    }
    return {};
}

void OSTApplication::attachToQtApplication()
{
    sharedApplication().followQtApplication();
}

void OSTApplication::followQtApplication()
{
    QCoreApplication *application = QCoreApplication::instance();
    moveToThread(application->thread());
    // The first turn of the event loop is when the host has finished launching.
    QTimer::singleShot(0, this, [this] {
        finishLaunching(launchOptionsUserInfo({.openedURL = linkFromArguments(QCoreApplication::arguments())}));
        followQtState();
    });
    connect(application, &QCoreApplication::aboutToQuit, this, &OSTApplication::terminate);
    if (auto *guiApplication = qobject_cast<QGuiApplication *>(application))
        followGuiApplication(guiApplication);
}

void OSTApplication::followGuiApplication(QGuiApplication *application)
{
    connect(application, &QGuiApplication::applicationStateChanged, this, [this](Qt::ApplicationState state) {
        if (m_finishedLaunching)
            moveTo(qtState(state));
    });
    application->installEventFilter(this);
}

void OSTApplication::followQtState()
{
    if (m_finishedLaunching)
        moveTo(currentQtState());
}

bool OSTApplication::eventFilter(QObject *watched, QEvent *event)
{
    // Looked at once the change has settled: a window being hidden may still count as visible.
    if (changesWindowVisibility(watched, event))
        QMetaObject::invokeMethod(this, &OSTApplication::followQtState, Qt::QueuedConnection);
    return false;
}

void OSTApplication::finishLaunching(const QVariantMap &launchOptions)
{
    if (m_finishedLaunching)
        return;
    m_finishedLaunching = true;
    m_launchOptions = launchOptions;
    post(OSTApplicationDidFinishLaunchingNotification, launchOptions);
}

void OSTApplication::becomeActive()
{
    moveTo(State::Active);
}

void OSTApplication::resignActive()
{
    moveTo(State::Inactive);
}

void OSTApplication::enterBackground()
{
    moveTo(State::Background);
}

void OSTApplication::enterForeground()
{
    if (m_state == State::Background)
        moveTo(State::Inactive);
}

void OSTApplication::terminate()
{
    if (m_terminated)
        return;
    m_terminated = true;
    post(OSTApplicationWillTerminateNotification);
}

void OSTApplication::moveTo(State target)
{
    if (target == m_state)
        return;
    if (m_state == State::Background) {
        m_state = State::Inactive;
        post(OSTApplicationWillEnterForegroundNotification);
    } else if (m_state == State::Active) {
        m_state = State::Inactive;
        post(OSTApplicationWillResignActiveNotification);
    }
    if (target == State::Active) {
        m_state = State::Active;
        post(OSTApplicationDidBecomeActiveNotification);
    } else if (target == State::Background) {
        m_state = State::Background;
        post(OSTApplicationDidEnterBackgroundNotification);
    }
}

void OSTApplication::post(const QString &name, const QVariantMap &userInfo)
{
    OSTNotificationCenter::defaultCenter().post(name, this, userInfo);
}

} // namespace ostrel
