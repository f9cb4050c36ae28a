// Killing the host at any moment loses no event it was told about: child processes take in events
// while another thread keeps sending, and are killed with SIGKILL after a random number of events.
// A final start in this process sends what the journal kept; the service must then hold every
// event whose trackEventWithName() returned, exactly once.

#include <ostrel/Ostrel.h>

#include "events/OSTEventJournal.h"
#include "events/OSTEventManager.h"
#include "platform/OSTApplication.h"
#include "support/OSTChildProcess.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRandomGenerator>
#include <QSet>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <thread>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// Arguments: data folder, bundle folder, run number. Prints each sequence number once its event
// has been taken in; runs until killed.
const bool writerRegistered = test::OSTChildProcess::registerMode(u"event-writer"_s, [](const QStringList &arguments) {
    qputenv("XDG_DATA_HOME", arguments.at(arguments.size() - 3).toLocal8Bit());
    Ostrel::setMainBundlePath(arguments.at(arguments.size() - 2));
    const int run = arguments.last().toInt();
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    Ostrel::startWithToken(u"crash-token"_s);
    std::atomic<bool> writing = true;
    std::thread sender([&] {
        while (writing) {
            Ostrel::flushEvents();
            OSTEventManager::sharedManager().pendingEventCount();
        }
    });
    for (int sequence = 0; sequence < 1000000; ++sequence) {
        Ostrel::trackEventWithName(u"crash"_s, {{u"run"_s, run}, {u"sequence"_s, sequence}});
        std::printf("%d\n", sequence);
        std::fflush(stdout);
    }
    writing = false;
    sender.join();
    return 0;
});

// Starts a writer and kills it once it has reported `events` events; returns the sequences it
// reported.
QList<int> runWriterAndKill(const QString &dataFolder, const QString &bundleFolder, int run, int events)
{
    QProcess writer;
    writer.setProcessChannelMode(QProcess::SeparateChannels);
    writer.setStandardErrorFile(QProcess::nullDevice());
    writer.start(QCoreApplication::applicationFilePath(),
                 {test::OSTChildProcess::argumentFor(u"event-writer"_s), dataFolder, bundleFolder, QString::number(run)});
    QByteArray output;
    const auto reported = [&] {
        output += writer.readAllStandardOutput();
        return output.count('\n') >= events || writer.state() == QProcess::NotRunning;
    };
    EXPECT_TRUE(test::waitUntil(reported, 60000)) << "run " << run;
    writer.kill();
    writer.waitForFinished(10000);
    output += writer.readAllStandardOutput();
    QList<int> sequences;
    // Only complete lines: a number whose newline was not written may not have been returned.
    for (const QByteArray &line : output.left(output.lastIndexOf('\n') + 1).split('\n')) {
        if (!line.isEmpty())
            sequences.append(line.toInt());
    }
    return sequences;
}

} // namespace

TEST(EventCrash, EveryEventTakenInBeforeASIGKILLReachesTheServiceExactlyOnce)
{
    OSTApplication::setLifecycleSource(OSTApplication::LifecycleSource::Host);
    test::OSTDevServerProcess server;
    ASSERT_TRUE(server.start());
    QTemporaryDir bundle;
    server.installMainBundle(bundle.path(), {{u"OstrelToken"_s, u"crash-token"_s}});
    const QString dataFolder = qEnvironmentVariable("XDG_DATA_HOME");

    constexpr int runs = 20;
    QSet<std::pair<int, int>> returned;
    for (int run = 0; run < runs; ++run) {
        const int events = QRandomGenerator::global()->bounded(1, 600);
        for (const int sequence : runWriterAndKill(dataFolder, bundle.path(), run, events))
            returned.insert({run, sequence});
    }
    ASSERT_FALSE(returned.isEmpty());

    Ostrel::startWithToken(u"crash-token"_s);
    Ostrel::flushEvents();
    ASSERT_TRUE(test::waitUntil([] {
        Ostrel::flushEvents();
        return OSTEventJournal(OSTEventJournal::standardJournalPath()).loadAll().empty();
    }, 100000));

    QHash<std::pair<int, int>, int> storedCounts;
    for (const QVariantMap &event : server.storedEvents()) {
        if (event.value(u"event_type"_s) == u"crash"_s)
            ++storedCounts[{event.value(u"run"_s).toInt(), event.value(u"sequence"_s).toInt()}];
    }
    int missing = 0;
    for (const auto &event : returned)
        missing += storedCounts.contains(event) ? 0 : 1;
    EXPECT_EQ(missing, 0) << "of " << returned.size() << " events taken in";
    for (auto count = storedCounts.cbegin(); count != storedCounts.cend(); ++count)
        EXPECT_EQ(count.value(), 1) << "run " << count.key().first << " sequence " << count.key().second;
}
