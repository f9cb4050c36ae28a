#pragma once

#include <QtGlobal>

#include <functional>
#include <vector>

namespace ostrel::devserver {

// The clock that delayed answers wait on. On real time by default. A driven clock stands still
// until the admin route moves it, so a test decides when a held answer goes out instead of
// racing a timer on a loaded machine. Lives on the event loop's thread.
class ServiceClock {
public:
    enum class Kind { Real, Driven };

    explicit ServiceClock(Kind kind) : m_kind(kind) {}

    Kind kind() const { return m_kind; }

    // Runs `work` on the event loop once `seconds` have passed on this clock.
    void callAfter(double seconds, std::function<void()> work);

    // Moves a driven clock on by `seconds` (≥ 0) and runs the work that has come due, earliest
    // first. Precondition: kind() == Kind::Driven.
    void advance(double seconds);

    // Seconds a driven clock has been moved on since the service started.
    double elapsedSeconds() const { return m_elapsedSeconds; }
    // Work waiting on a driven clock.
    qsizetype pendingCount() const { return qsizetype(m_pending.size()); }

private:
    struct Pending {
        double dueSeconds;
        std::function<void()> work;
    };

    const Kind m_kind;
    double m_elapsedSeconds = 0.0;
    std::vector<Pending> m_pending; // in the order it was scheduled
};

} // namespace ostrel::devserver
