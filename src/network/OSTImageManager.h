#pragma once

#include "core/OSTFileManager.h"
#include "network/OSTRequestManager.h"

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QString>
#include <QUrl>

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace ostrel {

// Delivers the images that screens name by address. An image is looked for among the host's own
// images (the main bundle's folder, then the host's Qt resources), then in the SDK's images
// folder, and only then downloaded; callers waiting for one address share one download, and every
// downloaded image is cached as PNG under the address's file name (two addresses ending in the
// same file name share one entry, deliberately).
//
// Completions always run on the GUI thread, later, also for images found at once. May be used
// from any thread: the waiting lists are guarded by a lock, downloads complete (and are decoded
// and cached) on the download session's queue. Addresses that cannot be cached safely (no file
// name, "..", a name with a slash) or downloaded (not http or https) give a null image and a
// debug line.
class OSTImageManager {
public:
    using Completion = std::function<void(const QImage &image)>;
    using Task = OSTRequestManager::Task;

    static OSTImageManager &sharedManager();

    // Caches in the images folder of `files`.
    explicit OSTImageManager(const OSTFileManager &files);
    ~OSTImageManager();

    OSTImageManager(const OSTImageManager &) = delete;
    OSTImageManager &operator=(const OSTImageManager &) = delete;

    void loadImageWithURL(const QUrl &url, Completion completion);
    // Downloads an http or https image that is neither cached nor already on its way, so that a
    // screen shows complete; host images are not consulted.
    void preloadImageWithURL(const QUrl &url);
    // Starts the download whose completion serves everybody waiting for `url`.
    Task downloadImageWithURL(const QUrl &url);
    QImage loadCachedImageForURL(const QUrl &url) const;
    bool cacheImage(const QImage &image, const QUrl &url) const;
    // Forgets every waiting completion; downloads go on and still fill the cache.
    void muteAllDownloads();
    // Cancels every download in flight; its waiting completions get a null image.
    void cancellAllDownloads();

    // The percent-decoded name under which the image of `url` is looked for and cached: the last
    // path component of an http or https address, otherwise the whole address. Empty when that
    // name could leave the images folder or names nothing.
    static QString imageNameForURL(const QUrl &url);

private:
    // The waiting lists, shared with the download completions so that a completion arriving after
    // the manager is gone finds nothing to do.
    struct Downloads {
        struct Pending {
            std::vector<Completion> completions;
            Task task;
            quint64 serial = 0;
        };
        explicit Downloads(const OSTFileManager &cacheFiles) : files(cacheFiles) {}

        const OSTFileManager files;
        QMutex lock;
        std::map<QString, Pending> pending;
        quint64 nextSerial = 0;
        // Images already read from the host's files, and those read from the cache folder or
        // downloaded, by name: a screen that shows one picture many times reads and decodes it
        // once. Kept apart because the host's image of a name wins over a download of it. Costs
        // are kilobytes.
        QCache<QString, QImage> decodedHostImages{decodedImagesBudgetKB / 2};
        QCache<QString, QImage> decoded{decodedImagesBudgetKB / 2};
    };

    static constexpr qsizetype decodedImagesBudgetKB = 32 * 1024;

    // Adds `completion` to the list of `url`; the first one in starts the download.
    void waitForDownload(const QUrl &url, Completion completion);
    bool isWaitingFor(const QUrl &url) const;
    static void finishDownload(Downloads &downloads, const QUrl &url, const QImage &image);
    static QImage hostImageNamed(const QString &name);
    enum class Origin { Host, Elsewhere };
    static QImage rememberedImage(Downloads &downloads, Origin origin, const QString &name);
    static void rememberImage(Downloads &downloads, Origin origin, const QString &name, const QImage &image);
    // The host's image of `name`, remembered once read.
    static QImage hostImage(Downloads &downloads, const QString &name);
    static bool isDownloadable(const QUrl &url);
    static void deliver(const Completion &completion, const QImage &image);

    const std::shared_ptr<Downloads> m_downloads;
};

} // namespace ostrel
