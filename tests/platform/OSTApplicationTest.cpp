#include "platform/OSTApplication.h"
#include "platform/OSTNotificationCenter.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QGuiApplication>
#include <QTimer>
#include <QWindow>

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Records the life-cycle notifications in the order they are posted.
class LifecycleRecorder {
public:
    LifecycleRecorder()
    {
        for (const QString &name : {OSTApplicationDidFinishLaunchingNotification,
                                    OSTApplicationDidBecomeActiveNotification,
                                    OSTApplicationWillResignActiveNotification,
                                    OSTApplicationDidEnterBackgroundNotification,
                                    OSTApplicationWillEnterForegroundNotification,
                                    OSTApplicationWillTerminateNotification}) {
            m_tokens.push_back(OSTNotificationCenter::defaultCenter().addObserver(
                name, [this](const OSTNotification &note) {
                    names.push_back(QString(note.name).remove(u"UIApplication"_s).remove(u"Notification"_s));
                    EXPECT_EQ(note.object, &OSTApplication::sharedApplication());
                }));
        }
    }
    ~LifecycleRecorder()
    {
        for (OSTObserverToken token : m_tokens)
            OSTNotificationCenter::defaultCenter().removeObserver(token);
    }
    std::vector<QString> names;

private:
    std::vector<OSTObserverToken> m_tokens;
};

using Names = std::vector<QString>;

} // namespace

TEST(Application, ExplicitStepsPostEveryTransitionOnTheWay)
{
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    OSTApplication &application = OSTApplication::sharedApplication();
    LifecycleRecorder recorder;

    EXPECT_EQ(application.applicationState(), OSTApplication::State::Inactive);
    application.finishLaunching({{u"key"_s, 1}});
    application.finishLaunching();
    EXPECT_TRUE(application.hasFinishedLaunching());
    application.becomeActive();
    application.enterBackground();
    EXPECT_EQ(application.applicationState(), OSTApplication::State::Background);
    application.becomeActive();
    application.resignActive();
    application.enterForeground(); // not in the background: nothing to do
    application.terminate();
    application.terminate();

    EXPECT_EQ(recorder.names, (Names{u"DidFinishLaunching"_s, u"DidBecomeActive"_s, u"WillResignActive"_s,
                                     u"DidEnterBackground"_s, u"WillEnterForeground"_s, u"DidBecomeActive"_s,
                                     u"WillResignActive"_s, u"WillTerminate"_s}));
    QCoreApplication::processEvents();
    EXPECT_EQ(recorder.names.size(), 8u) << "manual mode posts nothing on its own";
}

TEST(Application, AutomaticModeFinishesLaunchingOnTheFirstLoopTurnAndFollowsQt)
{
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Automatic);
    QWindow window; // without a window shown, a GUI application is in the background
    window.show();
    LifecycleRecorder recorder;
    OSTApplication &application = OSTApplication::sharedApplication();
    EXPECT_FALSE(application.hasFinishedLaunching());
    ASSERT_TRUE(test::waitUntil([&] { return application.hasFinishedLaunching(); }));
    ASSERT_FALSE(recorder.names.empty());
    EXPECT_EQ(recorder.names.front(), u"DidFinishLaunching"_s);

    recorder.names.clear();
    emit qGuiApp->applicationStateChanged(Qt::ApplicationHidden);
    emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    const Names expectedFromInactive{u"DidEnterBackground"_s, u"WillEnterForeground"_s, u"DidBecomeActive"_s};
    const Names expectedFromActive{u"WillResignActive"_s, u"DidEnterBackground"_s, u"WillEnterForeground"_s,
                                   u"DidBecomeActive"_s};
    EXPECT_TRUE(recorder.names == expectedFromInactive || recorder.names == expectedFromActive);

    recorder.names.clear();
    // The host's event loop returning is what terminates the application.
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    EXPECT_EQ(recorder.names, (Names{u"WillTerminate"_s}));
}
