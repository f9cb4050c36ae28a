#include "platform/OSTApplication.h"

#include "platform/OSTNotificationCenter.h"

#include <QGuiApplication>
#include <QTimer>

#include <atomic>

namespace ostrel {

namespace {

std::atomic<OSTApplication::LifecycleSource> requestedSource{OSTApplication::LifecycleSource::Automatic};

OSTApplication::State stateFromQt(Qt::ApplicationState state)
{
    switch (state) {
    case Qt::ApplicationActive:
        return OSTApplication::State::Active;
    case Qt::ApplicationInactive:
        return OSTApplication::State::Inactive;
    case Qt::ApplicationHidden:
    case Qt::ApplicationSuspended:
        break;
    }
    return OSTApplication::State::Background;
}

} // namespace

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
    if (QCoreApplication *qtApplication = QCoreApplication::instance())
        moveToThread(qtApplication->thread());
    if (source == LifecycleSource::Automatic)
        followQtApplication();
}

void OSTApplication::followQtApplication()
{
    auto *guiApplication = qobject_cast<QGuiApplication *>(QCoreApplication::instance());
    if (!guiApplication)
        return;
    // The first turn of the event loop is when the host has finished launching.
    QTimer::singleShot(0, this, [this] {
        finishLaunching();
        moveTo(stateFromQt(QGuiApplication::applicationState()));
    });
    connect(guiApplication, &QGuiApplication::applicationStateChanged, this,
            [this](Qt::ApplicationState state) {
                if (m_finishedLaunching)
                    moveTo(stateFromQt(state));
            });
    connect(guiApplication, &QCoreApplication::aboutToQuit, this, &OSTApplication::terminate);
}

void OSTApplication::finishLaunching(const QVariantMap &launchOptions)
{
    if (m_finishedLaunching)
        return;
    m_finishedLaunching = true;
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
