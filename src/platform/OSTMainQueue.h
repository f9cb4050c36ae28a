#pragma once

#include <functional>

namespace ostrel {

// Work for the GUI thread (the thread of the QCoreApplication). Without an application object
// there is no main event loop: work then runs inline on the calling thread.
class OSTMainQueue {
public:
    OSTMainQueue() = delete;

    static bool isCurrent();
    // Runs `work` later on the main thread, in order of submission.
    static void async(std::function<void()> work);
    // Runs `work` on the main thread and waits; inline when already there. Calling this from a
    // thread that the main thread is itself waiting for deadlocks, as with any synchronous hop.
    static void sync(const std::function<void()> &work);
    // Runs `work` on the main thread after `seconds` of the current OSTClock.
    static void after(double seconds, std::function<void()> work);
};

} // namespace ostrel
