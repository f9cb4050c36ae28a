#pragma once

#include <QUrl>

#include <functional>

namespace ostrel {

// What the network layer measures about its own work: failed API calls on the service's side and
// how image downloads went. The network sits below the events, so it cannot make events itself;
// the start-up code connects a reporter that turns these reports into statistical events. While
// none is connected, reports are dropped. Thread-safe: reports may come from any thread and reach
// the reporter on that thread.
class OSTNetworkStatistics {
public:
    enum class Outcome { Failure, Success, Timeout };

    struct Reporter {
        std::function<void(const QUrl &url)> internalServerError;
        std::function<void(const QUrl &url, double seconds, Outcome outcome)> imageDownload;
    };

    OSTNetworkStatistics() = delete;

    // Replaces the reporter; a default-constructed one disconnects it.
    static void connectReporter(Reporter reporter);

    static void reportInternalServerError(const QUrl &url);
    static void reportImageDownload(const QUrl &url, double seconds, Outcome outcome);
};

} // namespace ostrel
