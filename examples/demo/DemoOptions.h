#pragma once

#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace ostrel::demo {

// ostrel-demo's command line.
struct DemoOptions {
    // The folder holding Info.json; the executable's folder when not given.
    QString bundlePath;
    // Walk the install flow by itself and check what the service received.
    bool autoplay = false;
    // Measure the cost of an experience on screen (HostMeasurement) instead of walking.
    bool measure = false;
    // The same host without starting the SDK (with measure: the baseline).
    bool withoutSDK = false;
    QString screensFolder;
    QString serviceOutputPath;
    QString serviceDatabasePath;
    // How long the walk or the measurement may take before it gives up.
    std::chrono::milliseconds timeLimit{45000};
    // How long the host's delegate takes to answer, like a back end.
    std::chrono::milliseconds answerDelay{300};

    // nullopt with `error` set (a message with the usage) when the arguments do not make sense.
    static std::optional<DemoOptions> parse(const QStringList &arguments, QString &error);
};

} // namespace ostrel::demo
