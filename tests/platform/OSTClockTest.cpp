#include "platform/OSTClock.h"
#include "platform/OSTManualClock.h"
#include "platform/OSTSerialQueue.h"
#include "platform/OSTSystemClock.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

TEST(Clock, SystemClockCountsFromTheReferenceDate)
{
    OSTSystemClock clock;
    const double expected = QDateTime::currentSecsSinceEpoch() - 978307200.0;
    EXPECT_NEAR(clock.now(), expected, 2.0);
    const double before = clock.monotonicNow();
    EXPECT_GE(clock.monotonicNow(), before);
    // Both clocks in the current one are the system's until a test replaces them.
    EXPECT_NEAR(OSTClock::current().now(), expected, 2.0);
}

TEST(Clock, SystemTimersFireOnTheirContextThreadAndCanBeCancelled)
{
    OSTSystemClock clock;
    OSTSerialQueue queue(u"timers"_s);
    std::atomic<QThread *> firedOn{nullptr};
    std::atomic<bool> cancelledFired{false};
    const OSTTimerId cancelled = clock.schedule(0.05, queue.context(), [&] { cancelledFired = true; });
    clock.cancel(cancelled);
    clock.schedule(0.0, queue.context(), [&] { firedOn = QThread::currentThread(); });
    ASSERT_TRUE(test::waitUntil([&] { return firedOn.load() != nullptr; }));
    EXPECT_EQ(firedOn.load(), queue.thread());
    QThread::msleep(100);
    queue.sync([] {});
    EXPECT_FALSE(cancelledFired);
}

TEST(Clock, ManualClockFiresTimersInDueOrderAsItAdvances)
{
    test::ManualClockScope time(1000.0);
    OSTClock &clock = OSTClock::current();
    EXPECT_EQ(clock.now(), 1000.0);
    QObject context;
    std::vector<QString> fired;
    clock.schedule(60, &context, [&] { fired.push_back(u"60"_s); });
    clock.schedule(5, &context, [&] {
        fired.push_back(u"5"_s);
        // A timer scheduled while firing falls due within the same advance.
        OSTClock::current().schedule(10, &context, [&] { fired.push_back(u"5+10"_s); });
    });
    const OSTTimerId cancelled = clock.schedule(30, &context, [&] { fired.push_back(u"30"_s); });
    clock.cancel(cancelled);

    time.advance(20);
    EXPECT_EQ(fired, (std::vector<QString>{u"5"_s, u"5+10"_s}));
    EXPECT_EQ(clock.now(), 1020.0);
    EXPECT_EQ(clock.monotonicNow(), 20.0);
    time.advance(40);
    EXPECT_EQ(fired, (std::vector<QString>{u"5"_s, u"5+10"_s, u"60"_s}));
    EXPECT_EQ(time.clock().pendingTimerCount(), 0);

    time.clock().setNow(5.0);
    EXPECT_EQ(clock.now(), 5.0);
    EXPECT_EQ(clock.monotonicNow(), 60.0) << "changing the wall clock leaves the monotonic one";
}

TEST(Clock, ManualTimersRunOnTheirContextsThreadAndNotOnceItIsGone)
{
    test::ManualClockScope time;
    OSTSerialQueue queue(u"elsewhere"_s);
    std::atomic<QThread *> firedOn{nullptr};
    bool destroyedFired = false;
    OSTClock::current().schedule(1, queue.context(), [&] { firedOn = QThread::currentThread(); });
    {
        QObject context;
        OSTClock::current().schedule(1, &context, [&] { destroyedFired = true; });
    }
    time.advance(2);
    queue.sync([] {});
    EXPECT_EQ(firedOn.load(), queue.thread());
    EXPECT_FALSE(destroyedFired);
}
