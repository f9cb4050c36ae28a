#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QString>

#include <chrono>
#include <optional>

namespace ostrel::demo {

// What an experience costs the host, measured from inside the demo (`scripts/run-demo --measure`):
// the time from the SDK's launch-finished callback to the first paint of the first screen, and
// the process's private dirty and resident memory once the screen is on display. Without the
// SDK (the same host that never starts it) only the memory, once the window has settled.
// Prints "measure: ..." lines and ends with finished().
//
// Lives on the GUI thread; watches paints through an application-wide event filter.
class HostMeasurement : public QObject {
    Q_OBJECT

public:
    struct MemoryUsage {
        qint64 privateDirtyKilobytes = 0;
        qint64 residentKilobytes = 0;
    };
    enum class SDK { Started, NotStarted };

    // `firstScreenElement` is the element key of a view on the first screen shown; without its
    // paint within `timeLimit` the measurement fails.
    HostMeasurement(SDK sdk, QString firstScreenElement, std::chrono::milliseconds timeLimit, QObject *parent = nullptr);

    // Call before the SDK is started, so the launch-finished callback is the measurement's.
    void start();
    // The first screen's element is on the glass. Qt Widgets tell by the element's paint event,
    // which the measurement watches itself; a Qt Quick host calls this when a frame that shows the
    // element was swapped. Only the first call after the launch finished counts.
    void markFirstScreenPainted();

    // The totals of /proc/self/smaps_rollup; nullopt when it cannot be read.
    static std::optional<MemoryUsage> currentMemoryUsage();
    static std::optional<MemoryUsage> memoryUsageIn(const QString &smapsRollup);

signals:
    void finished(int exitCode);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void reportMemoryAfterSettling();
    void reportMemory();

    const SDK m_sdk;
    const QString m_firstScreenElement;
    const std::chrono::milliseconds m_timeLimit;
    QElapsedTimer m_sinceLaunchFinished;
    bool m_painted = false;
};

} // namespace ostrel::demo
