// Sessions on a desktop, where Qt reports only Active and Inactive: the SDK follows Qt's own
// application state (automatic life cycle) on the offscreen platform.

#include <ostrel/Ostrel.h>

#include "launch/OSTServiceManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTEventRecorder.h"
#include "support/OSTTestSupport.h"

#include <QGuiApplication>
#include <QTemporaryDir>
#include <QWidget>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(DesktopSessions, LeavingAndReturningFollowQtsStateAndTheSessionDelay)
{
    test::ManualClockScope time;
    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"test-token"_s}});
    test::OSTEventRecorder events;
    const auto sessionStarts = [&] { return events.parametersOf(OSTSessionStartedEvent); };
    OSTApplication &application = OSTApplication::sharedApplication();

    Ostrel::setLifecycleSource(OSTLifecycleSource::Automatic);
    Ostrel::start();
    QWidget window;
    window.show();
    window.activateWindow();
    ASSERT_TRUE(test::waitUntil([&] { return application.applicationState() == OSTApplicationState::Active; }));
    ASSERT_TRUE(test::waitUntil([&] { return server.recordedRequests(u"launch_v3"_s).size() == 1; }));
    ASSERT_TRUE(test::waitUntil([&] { return OSTServiceManager::sharedManager().launched(); }));
    const size_t afterLaunch = sessionStarts().size();

    emit qGuiApp->applicationStateChanged(Qt::ApplicationInactive);
    EXPECT_EQ(application.applicationState(), OSTApplicationState::Background) << "losing the focus leaves";
    time.advance(901);
    emit qGuiApp->applicationStateChanged(Qt::ApplicationActive);
    ASSERT_EQ(sessionStarts().size(), afterLaunch + 1) << "901 s away: a new session";
    EXPECT_EQ(sessionStarts().back().value(u"session_foreground"_s), 1);

    window.hide();
    EXPECT_TRUE(test::waitUntil([&] { return application.applicationState() == OSTApplicationState::Background; }))
        << "no window left visible is the background";
    window.show();
    window.activateWindow();
    EXPECT_TRUE(test::waitUntil([&] { return application.applicationState() == OSTApplicationState::Active; }));
    EXPECT_EQ(server.recordedRequests(u"launch_v3"_s).size(), 1) << "no new launch within the session cap";
}
