// A host that ends its process with exit() (a command-line tool, a fatal-error path, a fuzzer)
// while the SDK's threads still hold network work: the child below calls exit(0) with an image
// download and an event request waiting on a slow service, and must end at once and cleanly.

#include <ostrel/Ostrel.h>

#include "events/OSTEventManager.h"
#include "network/OSTImageManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Arguments: the bundle folder, the image address, then "at-once" to call exit(0) from the GUI
// thread as the requests start, or "when-told" to call it once a line arrives on standard input.
const bool exitingHostRegistered = test::OSTChildProcess::registerMode(u"exit-with-work-in-flight"_s,
                                                                       [](const QStringList &arguments) {
    Ostrel::setMainBundlePath(arguments.at(arguments.size() - 3));
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::startWithToken(u"exit-token"_s);
    OSTImageManager::sharedManager().preloadImageWithURL(QUrl(arguments.at(arguments.size() - 2)));
    Ostrel::trackEventWithName(u"before exit"_s);
    Ostrel::flushEvents();
    const auto exitNow = [] {
        std::printf("exiting\n");
        std::fflush(stdout);
        std::exit(0);
    };
    if (arguments.last() == u"at-once"_s)
        exitNow();
    QSocketNotifier told(0, QSocketNotifier::Read);
    QObject::connect(&told, &QSocketNotifier::activated, exitNow);
    return QCoreApplication::exec();
});

class ProcessExit : public ::testing::Test {
protected:
    void SetUp() override
    {
        // Neither request is answered before the host is gone.
        ASSERT_TRUE(server.start({.faults = {u"images:delay=600"_s, u"event:delay=600"_s}}));
        server.writeImage(u"slow.png"_s, QByteArray(64, 'x'));
        server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"exit-token"_s}});
    }

    void startHost(const QString &moment)
    {
        host.start(QCoreApplication::applicationFilePath(),
                   {test::OSTChildProcess::argumentFor(u"exit-with-work-in-flight"_s), bundle.path(),
                    server.serviceURL().toString() + u"/images/slow.png"_s, moment});
        ASSERT_TRUE(host.waitForStarted());
    }

    // Waits for the host to call exit(), then (3 s at most) for it to end; it must end with
    // status 0 and no report of a queue left running, a type Qt no longer knows or a sanitizer.
    void expectCleanEnd(const std::string &moment)
    {
        QDeadlineTimer safetyNet(60000);
        while (!host.canReadLine() && host.state() == QProcess::Running && !safetyNet.hasExpired())
            host.waitForReadyRead(10);
        const bool ended = host.waitForFinished(3000);
        const QString errors = QString::fromLocal8Bit(host.readAllStandardError());
        if (!ended)
            host.kill();
        ASSERT_TRUE(ended) << moment << ": still running 3 s after exit(0)\n" << errors.toStdString();
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit) << moment << "\n" << errors.toStdString();
        EXPECT_EQ(host.exitCode(), 0) << moment << "\n" << errors.toStdString();
        for (const QString &report : {u"Cannot queue arguments"_s, u"still had work"_s, u"TLS backend"_s, u"Sanitizer"_s})
            EXPECT_FALSE(errors.contains(report)) << moment << "\n" << errors.toStdString();
    }

    test::OSTDevServerProcess server;
    QTemporaryDir bundle;
    QProcess host;
};

} // namespace

TEST_F(ProcessExit, AHostCallingExitWithRequestsInFlightEndsAtOnceWithStatusZero)
{
    startHost(u"when-told"_s);
    // The event request reached the service, so both requests are on the wire (the image first).
    QDeadlineTimer safetyNet(60000);
    while (server.recordedRequests(u"event"_s).isEmpty() && !safetyNet.hasExpired())
        host.waitForReadyRead(10);
    ASSERT_FALSE(server.recordedRequests(u"event"_s).isEmpty()) << host.readAllStandardError().toStdString();
    host.write("exit\n");
    expectCleanEnd("waiting for the service");

    // As the requests are being made on the SDK's threads: the moment differs from run to run.
    for (int run = 0; run < 5; ++run) {
        startHost(u"at-once"_s);
        expectCleanEnd("as they start, run " + std::to_string(run));
    }
}
