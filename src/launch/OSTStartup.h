#pragma once

namespace ostrel {

// The one place that knows every manager. Lower layers report upwards only through seams they
// declare themselves (see src/LAYERS); this class connects those seams to the managers above
// them, once per process, before the first token is taken.
class OSTStartup {
public:
    OSTStartup() = delete;

    // Runs once per process; later calls return at once. Safe from any thread.
    static void prepareProcess();

private:
    static void reportBundleProblems();
    static void connectNetworkStatistics();
    static void connectEventManager();
};

} // namespace ostrel
