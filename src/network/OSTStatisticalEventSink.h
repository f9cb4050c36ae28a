#pragma once

#include <QUrl>

#include <memory>

namespace ostrel {

// How an image download ended, as its timing statistic reports it.
enum class OSTImageDownloadTimingType : int {
    Failed = 1,
    Succeeded = 2,
    TimedOut = 3,
};

// Where the request manager reports its statistics: an internal server error for every HTTP 500
// and the duration of every image download. The event manager installs the sink that turns them
// into statistical events (OSTRequestManager::setStatisticalEventSink); until one is installed
// the statistics are dropped. Called on the reporting session's queue.
class OSTStatisticalEventSink {
public:
    virtual ~OSTStatisticalEventSink() = default;

    virtual void internalServerError(const QUrl &url) = 0;
    virtual void imageDownload(const QUrl &url, double seconds, OSTImageDownloadTimingType type) = 0;
};

} // namespace ostrel
