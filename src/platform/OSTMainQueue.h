#pragma once

#include <functional>

namespace ostrel {

// Work for the GUI thread (the thread of the QCoreApplication). Without an application object
// there is no main event loop: work then runs inline on the calling thread. Once the application
// object is being destroyed the main thread runs no more queued work: sync() from another thread
// then returns without running its work, and every serial queue is stopped (shutDown).
class OSTMainQueue {
public:
    OSTMainQueue() = delete;

    static bool isCurrent();
    // Runs `work` later on the main thread, in order of submission.
    static void async(std::function<void()> work);
    // Runs `work` on the main thread and waits; inline when already there. Calling this from a
    // thread that the main thread is itself waiting for deadlocks, as with any synchronous hop,
    // except at the end of the application, where the work is dropped instead.
    static void sync(const std::function<void()> &work);
    // Runs `work` on the main thread after `seconds` of the current OSTClock.
    static void after(double seconds, std::function<void()> work);

    // The end of the application, run as its object is destroyed (registered for every
    // application object the process makes): lets waiting sync() calls go and stops the serial
    // queues, so that no SDK thread outlives the application into the process's exit handlers.
    static void shutDown();
    // Also runs shutDown() from the process's exit handlers, for a host that ends with exit()
    // while its application object still exists. Exit handlers run in the reverse order of their
    // registration and Qt makes some of its globals on first use (the network's among them): a
    // caller that has just brought such globals in registers again, so that the queues stop
    // before those globals are destroyed. shutDown() run again finds the queues stopped.
    static void shutDownBeforeExitHandlers();
};

} // namespace ostrel
