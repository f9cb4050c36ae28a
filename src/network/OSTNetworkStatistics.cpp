#include "network/OSTNetworkStatistics.h"

#include <QMutex>
#include <QMutexLocker>

namespace ostrel {

namespace {

struct ReporterSlot {
    QMutex mutex;
    OSTNetworkStatistics::Reporter reporter;
};

ReporterSlot &reporterSlot()
{
    // Never destroyed: network threads still report while the process exits.
    static ReporterSlot *slot = new ReporterSlot;
    return *slot;
}

OSTNetworkStatistics::Reporter currentReporter()
{
    ReporterSlot &slot = reporterSlot();
    QMutexLocker locker(&slot.mutex);
    return slot.reporter;
}

} // namespace

void OSTNetworkStatistics::connectReporter(Reporter reporter)
{
    ReporterSlot &slot = reporterSlot();
    QMutexLocker locker(&slot.mutex);
    slot.reporter = std::move(reporter);
}

void OSTNetworkStatistics::reportInternalServerError(const QUrl &url)
{
    if (const Reporter reporter = currentReporter(); reporter.internalServerError)
        reporter.internalServerError(url);
}

void OSTNetworkStatistics::reportImageDownload(const QUrl &url, double seconds, Outcome outcome)
{
    if (const Reporter reporter = currentReporter(); reporter.imageDownload)
        reporter.imageDownload(url, seconds, outcome);
}

} // namespace ostrel
