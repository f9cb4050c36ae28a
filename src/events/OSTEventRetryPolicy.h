#pragma once

#include <functional>

namespace ostrel {

// How long the event queue waits after a failed send: 60 s, doubling after every further failure
// up to 10 minutes, each wait spread by a random ±20 % so that many installations coming back
// after an outage do not retry in step. A success starts over. Not thread-safe: owned by the
// event queue.
class OSTEventRetryPolicy {
public:
    static constexpr double firstDelay = 60.0;
    static constexpr double longestDelay = 600.0;
    static constexpr double spread = 0.2;

    // `uniform` returns numbers in [0, 1); the default draws from the system's random generator.
    explicit OSTEventRetryPolicy(std::function<double()> uniform = {});

    // The wait before the next attempt after one more failure.
    double delayAfterFailure();
    void reset();

private:
    std::function<double()> m_uniform;
    double m_baseDelay = firstDelay;
};

} // namespace ostrel
