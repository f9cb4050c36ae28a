#include "platform/OSTMainQueue.h"
#include "platform/OSTSerialQueue.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(SerialQueue, RunsWorkInOrderOnOneNamedThread)
{
    OSTSerialQueue queue(u"com.ostrelhq.test"_s);
    EXPECT_EQ(queue.name(), u"com.ostrelhq.test"_s);
    EXPECT_FALSE(queue.isCurrent());

    std::mutex mutex;
    std::vector<int> order;
    std::vector<QThread *> threads;
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
                    {
                        std::lock_guard lock(mutex);
                        order.push_back(value);
                        threads.push_back(QThread::currentThread());
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
    for (QThread *thread : threads) {
        EXPECT_EQ(thread, queue.thread());
        EXPECT_EQ(thread->objectName(), u"com.ostrelhq.test"_s);
    }
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
