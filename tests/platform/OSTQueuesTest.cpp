#include "platform/OSTMainQueue.h"
#include "platform/OSTSerialQueue.h"
#include "support/OSTChildProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QPointer>
#include <QProcess>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

void report(const char *line)
{
    std::printf("%s\n", line);
    std::fflush(stdout);
}

// Returns from main (destroying the application) while a queue's work waits on the main thread,
// as a command-line host does when it quits right after the SDK started sending something.
const bool endingChildRegistered = test::OSTChildProcess::registerMode(u"end-with-busy-queues"_s, [](const QStringList &) {
    // Never destroyed, like the SDK's own queues.
    static OSTSerialQueue *busy = new OSTSerialQueue(u"busy"_s);
    static OSTSerialQueue *idle = new OSTSerialQueue(u"idle"_s);
    busy->async([] {
        // Nothing serves the main thread any more: only the end of the application lets this go.
        bool ran = false;
        OSTMainQueue::sync([&] { ran = true; });
        report(ran ? "busy: the main thread ran work after the end" : "busy: main-thread work dropped");
    });
    busy->async([] { report("busy: later work ran"); });
    std::atexit([] {
        idle->sync([] { report("idle: ran work after the end"); });
        idle->async([] { report("idle: ran work after the end"); });
        report("exit handlers");
    });
    return 0;
});

} // namespace

TEST(SerialQueue, RunsWorkInOrderOnOneNamedThread)
{
    OSTSerialQueue queue(u"com.ostrelhq.test"_s);
    EXPECT_EQ(queue.name(), u"com.ostrelhq.test"_s);
    EXPECT_FALSE(queue.isCurrent());

    std::mutex mutex;
    std::vector<int> order;
    std::atomic<bool> offQueueThread{false};
    // Submitted from several threads at once: each thread's items keep their order and no two
    // items ever run at the same time.
    std::atomic<int> running{0};
    std::atomic<bool> overlapped{false};
    std::vector<std::thread> submitters;
    for (int submitter = 0; submitter < 4; ++submitter) {
        submitters.emplace_back([&, submitter] {
            for (int item = 0; item < 50; ++item) {
                queue.async([&, value = submitter * 1000 + item] {
                    if (running.fetch_add(1) != 0)
                        overlapped = true;
                    if (QThread::currentThread() != queue.thread())
                        offQueueThread = true;
                    {
                        std::lock_guard lock(mutex);
                        order.push_back(value);
                    }
                    running.fetch_sub(1);
                });
            }
        });
    }
    for (auto &submitter : submitters)
        submitter.join();
    queue.sync([] {});

    ASSERT_EQ(order.size(), 200u);
    EXPECT_FALSE(overlapped);
    for (int submitter = 0; submitter < 4; ++submitter) {
        int previous = -1;
        for (int value : order) {
            if (value / 1000 != submitter)
                continue;
            EXPECT_GT(value % 1000, previous);
            previous = value % 1000;
        }
    }
    EXPECT_FALSE(offQueueThread);
    EXPECT_EQ(queue.thread()->objectName(), u"com.ostrelhq.test"_s);
}

TEST(SerialQueue, SyncRunsInlineOnItsOwnQueueAndWaitsElsewhere)
{
    OSTSerialQueue queue(u"sync"_s);
    bool ranInline = false;
    bool nestedRan = false;
    queue.sync([&] {
        ranInline = queue.isCurrent();
        queue.sync([&] { nestedRan = true; }); // would deadlock if it did not run inline
    });
    EXPECT_TRUE(ranInline);
    EXPECT_TRUE(nestedRan);
}

TEST(SerialQueue, DestructionFinishesSubmittedWork)
{
    std::atomic<int> done{0};
    {
        OSTSerialQueue queue(u"draining"_s);
        for (int item = 0; item < 100; ++item)
            queue.async([&] { done.fetch_add(1); });
    }
    EXPECT_EQ(done.load(), 100);
}

TEST(SerialQueue, AQueueReleasedByItsOwnWorkStopsWithoutWaitingForItself)
{
    auto queue = std::make_shared<OSTSerialQueue>(u"self-releasing"_s);
    QPointer<QThread> thread = queue->thread();
    std::atomic<bool> finishedWork{false};
    std::atomic<bool> othersLetGo{false};
    // The task holds the last owner, as a network task may hold its session at exit.
    queue->async([owner = queue, &finishedWork, &othersLetGo]() mutable {
        while (!othersLetGo.load())
            QThread::yieldCurrentThread();
        ASSERT_EQ(owner.use_count(), 1);
        owner.reset();
        finishedWork = true;
    });
    queue.reset();
    othersLetGo = true;
    test::waitUntil([&] { return finishedWork.load() && thread.isNull(); });
    EXPECT_TRUE(finishedWork.load());
    EXPECT_TRUE(thread.isNull()) << "the stopped thread's object is deleted by the thread that made it";
}

TEST(SerialQueue, TheEndOfTheApplicationDrainsEveryQueueBeforeTheExitHandlersRun)
{
    QProcess child;
    child.start(QCoreApplication::applicationFilePath(), {test::OSTChildProcess::argumentFor(u"end-with-busy-queues"_s)});
    ASSERT_TRUE(child.waitForFinished(30000)) << "a worker waiting on the main thread held the process";
    const QString errors = QString::fromLocal8Bit(child.readAllStandardError());
    EXPECT_EQ(child.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(child.exitCode(), 0) << errors.toStdString();
    EXPECT_EQ(QString::fromLocal8Bit(child.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts),
              (QStringList{u"busy: main-thread work dropped"_s, u"busy: later work ran"_s, u"exit handlers"_s}))
        << "submitted work finishes before the exit handlers; nothing runs on a stopped queue";
    EXPECT_TRUE(errors.contains(u"Dropped work for the main thread: the application has ended"_s)) << errors.toStdString();
    EXPECT_TRUE(errors.contains(u"Dropped work for the stopped queue idle"_s)) << errors.toStdString();
}

TEST(MainQueue, AsyncAndSyncReachTheGuiThread)
{
    EXPECT_TRUE(OSTMainQueue::isCurrent());
    bool inline_ = false;
    OSTMainQueue::sync([&] { inline_ = true; });
    EXPECT_TRUE(inline_) << "sync on the main thread runs inline";

    OSTSerialQueue queue(u"worker"_s);
    std::atomic<bool> syncOnMain{false};
    std::atomic<bool> asyncOnMain{false};
    std::atomic<bool> workerDone{false};
    queue.async([&] {
        EXPECT_FALSE(OSTMainQueue::isCurrent());
        OSTMainQueue::sync([&] { syncOnMain = OSTMainQueue::isCurrent(); });
        OSTMainQueue::async([&] { asyncOnMain = OSTMainQueue::isCurrent(); });
        workerDone = true;
    });
    ASSERT_TRUE(test::waitUntil([&] { return workerDone && asyncOnMain; }));
    EXPECT_TRUE(syncOnMain);
}

TEST(MainQueue, AfterWaitsForTheClock)
{
    test::ManualClockScope time;
    int fired = 0;
    OSTMainQueue::after(3.0, [&] { ++fired; });
    time.advance(2.999);
    EXPECT_EQ(fired, 0);
    time.advance(0.001);
    EXPECT_EQ(fired, 1);
    time.advance(100);
    EXPECT_EQ(fired, 1);
}
