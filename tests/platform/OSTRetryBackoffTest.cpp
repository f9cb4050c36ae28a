#include "platform/OSTRetryBackoff.h"

#include <gtest/gtest.h>

#include <vector>

using namespace ostrel;

TEST(RetryBackoff, WaitsDoubleToTheCeilingSpreadEitherWayAndStartOverAfterAReset)
{
    double unit = 0.5; // no spread
    OSTRetryBackoff backoff(OSTRetryBackoff::Policy(), [&] { return unit; });
    std::vector<double> waits;
    for (int attempt = 0; attempt < 9; ++attempt)
        waits.push_back(backoff.nextWait());
    EXPECT_EQ(waits, (std::vector<double>{5, 10, 20, 40, 80, 160, 300, 300, 300}));

    for (int attempt = 0; attempt < 2000; ++attempt)
        EXPECT_EQ(backoff.nextWait(), 300.0) << "a long outage neither overflows nor drifts";

    backoff.reset();
    unit = 0.0;
    EXPECT_DOUBLE_EQ(backoff.nextWait(), 4.0) << "20 % shorter at the low end";
    unit = 0.999999;
    EXPECT_NEAR(backoff.nextWait(), 12.0, 1e-4) << "20 % longer at the high end";
    unit = 7.0; // a broken random source cannot push a wait outside the spread
    EXPECT_DOUBLE_EQ(backoff.nextWait(), 24.0);
}

TEST(RetryBackoff, TheSystemRandomSourceSpreadsWaitsWithinTwentyPercent)
{
    OSTRetryBackoff backoff;
    bool sawDifferentWaits = false;
    double previous = 0;
    for (int round = 0; round < 50; ++round) {
        backoff.reset();
        const double wait = backoff.nextWait();
        EXPECT_GE(wait, 4.0);
        EXPECT_LE(wait, 6.0);
        sawDifferentWaits = sawDifferentWaits || (round > 0 && wait != previous);
        previous = wait;
    }
    EXPECT_TRUE(sawDifferentWaits) << "installations must not retry in step";
}
