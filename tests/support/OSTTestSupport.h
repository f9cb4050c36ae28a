#pragma once

#include <ostrel/OSTLifecycle.h>

#include "platform/OSTManualClock.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <functional>
#include <memory>

namespace ostrel::test {

// Installs a manual clock for the lifetime of the scope and restores the system clock after.
class ManualClockScope {
public:
    explicit ManualClockScope(double now = 800000000.0);
    ~ManualClockScope();
    OSTManualClock &clock() { return *m_clock; }
    // Advances the clock, then lets queued work on the main thread run.
    void advance(double seconds);

private:
    std::shared_ptr<OSTManualClock> m_clock;
};

// Writes `info` as Info.json into `folder` (created if needed) and returns the folder.
QString writeBundle(const QString &folder, const QVariantMap &info);
// The object a JSON text holds: test data written as JSON. Ends the process if it holds none.
QVariantMap jsonObject(const char *json);
// Writes `bytes` to `path`, creating its folder.
void writeFile(const QString &path, const QByteArray &bytes);

// Runs the main event loop until `condition` holds or `timeoutMilliseconds` of real time pass
// (a safety net for work on other threads, never a stand-in for SDK time). Returns whether the
// condition held.
bool waitUntil(const std::function<bool()> &condition, int timeoutMilliseconds = 10000);

// Lets the application finish launching (with `options`) and waits until the SDK's launch blocks
// ran; returns their verdict, false when they did not run in time.
bool launchAndWait(const OSTLaunchOptions &options = {});

// What a block of code writes to standard error.
QString captureStandardError(const std::function<void()> &work);

} // namespace ostrel::test
