#pragma once

namespace ostrel {

// The one place that knows every manager. Before the first token is taken (and so before the
// launch request can leave), it creates every manager and connects it: the seams that lower
// layers declare (see src/LAYERS), the launch parameter sources, and the receivers of the launch
// response, in the order the response is handed out. A manager made later, on first use, would
// miss a launch response that arrived before anybody touched it.
//
// Adding a manager: create it and connect its receiver in connectManagers().
class OSTStartup {
public:
    OSTStartup() = delete;

    // Runs once per process; later calls return at once. Any thread may call it: the managers are
    // made on the GUI thread (a caller on another thread waits for them), after the migration.
    // Returns whether they exist: not before the application object does, whose names place the
    // stores; they are then made from its constructor.
    static bool prepareProcess();

    // Turns the network's statistics into statistical events on the event hook. Part of
    // prepareProcess(); also for code that records events without starting the SDK.
    static void connectNetworkStatistics();

private:
    static void reportBundleProblems();
    static void connectManagers();
    static void connectManagersOnce();
    static void connectEventManager();
    static void connectExperienceManager();
    static void connectUserToExperience();
    static void connectAttributionManager();
    static void connectAttributionToEvents();
    static void receiveLinks();
    static void connectFacebookManager();
    static void connectUserManager();
    static void connectPhoneNumberVerification();
};

} // namespace ostrel
