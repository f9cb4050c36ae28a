#pragma once

#include <functional>

namespace ostrel {

// The waits between attempts to get a failed request through: a first wait that doubles after
// every attempt up to a ceiling, each spread at random by a fraction either way so that many
// installations do not retry in step after an outage. Not thread-safe; owned by one thread.
class OSTRetryBackoff {
public:
    // Returns a number in [0, 1).
    using RandomSource = std::function<double()>;

    struct Policy {
        double firstWait = 5.0;
        double longestWait = 300.0;
        double spread = 0.2;
    };

    // 5 s doubling to 5 min, spread ±20 %, from the system's random generator.
    OSTRetryBackoff();
    OSTRetryBackoff(Policy policy, RandomSource random);

    // The wait before the next attempt, in seconds; each call counts one attempt.
    double nextWait();
    // Back to the first wait, after a request got through.
    void reset();
    int attempts() const { return m_attempts; }

private:
    Policy m_policy;
    RandomSource m_random;
    int m_attempts = 0;
};

} // namespace ostrel
