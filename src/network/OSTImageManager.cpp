#include "network/OSTImageManager.h"

#include "core/OSTLogging.h"
#include "platform/OSTBundle.h"
#include "platform/OSTMainQueue.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QString keyFor(const QUrl &url)
{
    return url.toString(QUrl::FullyEncoded);
}

bool isHTTP(const QUrl &url)
{
    return url.scheme() == u"http"_s || url.scheme() == u"https"_s;
}

// A name that stays a plain file inside one folder.
bool isSafeFileName(const QString &name)
{
    return !name.isEmpty() && name != u"."_s && name != u".."_s && !name.contains(u'/')
        && !name.contains(u'\\') && !name.contains(QChar(0));
}

} // namespace

OSTImageManager &OSTImageManager::sharedManager()
{
    // Never destroyed: downloads may still complete while the process exits.
    static OSTImageManager *manager = new OSTImageManager(OSTFileManager::sharedManager());
    return *manager;
}

OSTImageManager::OSTImageManager(const OSTFileManager &files) : m_downloads(std::make_shared<Downloads>(files)) {}

OSTImageManager::~OSTImageManager() = default;

QString OSTImageManager::imageNameForURL(const QUrl &url)
{
    // The component is taken before decoding, so that an encoded slash cannot shorten it.
    const QString encoded = isHTTP(url) ? url.fileName(QUrl::FullyEncoded) : url.toString(QUrl::FullyEncoded);
    const QString name = QUrl::fromPercentEncoding(encoded.toUtf8());
    return isSafeFileName(name) ? name : QString();
}

void OSTImageManager::loadImageWithURL(const QUrl &url, Completion completion)
{
    const QString name = imageNameForURL(url);
    if (name.isEmpty()) {
        OSTLogging::logDebug(u"The image address \"%1\" names no file that could be cached; no image."_s,
                             url.toString());
        deliver(completion, QImage());
        return;
    }
    // The host's own image of the name first, even over a download of it already remembered.
    QImage found = hostImage(*m_downloads, name);
    if (found.isNull())
        found = rememberedImage(*m_downloads, Origin::Elsewhere, name);
    if (found.isNull()) {
        found = m_downloads->files.loadImageWithName(name);
        if (!found.isNull())
            rememberImage(*m_downloads, Origin::Elsewhere, name, found);
    }
    if (!found.isNull()) {
        deliver(completion, found);
        return;
    }
    if (!isDownloadable(url)) {
        OSTLogging::logDebug(u"The image address \"%1\" is not an http or https address; no image."_s, url.toString());
        deliver(completion, QImage());
        return;
    }
    waitForDownload(url, std::move(completion));
}

void OSTImageManager::preloadImageWithURL(const QUrl &url)
{
    if (!isDownloadable(url) || imageNameForURL(url).isEmpty() || isWaitingFor(url)
        || !loadCachedImageForURL(url).isNull())
        return;
    const QString address = QUrl::fromPercentEncoding(url.toEncoded());
    OSTLogging::logDebug(u"Preloading image: %1"_s, address);
    waitForDownload(url, [address](const QImage &image) {
        if (image.isNull())
            OSTLogging::logDebug(u"Failed to preload image: %1"_s, address);
    });
}

OSTImageManager::Task OSTImageManager::downloadImageWithURL(const QUrl &url)
{
    const std::weak_ptr<Downloads> downloads = m_downloads;
    return OSTRequestManager::sharedManager().imageRequestWithURL(
        url, [downloads, url](const QImage &image, const std::optional<OSTError> &) {
            if (const auto alive = downloads.lock())
                finishDownload(*alive, url, image);
        });
}

QImage OSTImageManager::loadCachedImageForURL(const QUrl &url) const
{
    const QString name = imageNameForURL(url);
    return name.isEmpty() ? QImage() : m_downloads->files.loadImageWithName(name);
}

bool OSTImageManager::cacheImage(const QImage &image, const QUrl &url) const
{
    const QString name = imageNameForURL(url);
    return !name.isEmpty() && m_downloads->files.saveImage(image, name);
}

void OSTImageManager::muteAllDownloads()
{
    QMutexLocker locker(&m_downloads->lock);
    for (auto &[key, pending] : m_downloads->pending)
        pending.completions.clear();
}

void OSTImageManager::cancellAllDownloads()
{
    std::vector<Task> tasks;
    {
        QMutexLocker locker(&m_downloads->lock);
        for (const auto &[key, pending] : m_downloads->pending) {
            if (pending.task)
                tasks.push_back(pending.task);
        }
    }
    // Outside the lock: a cancelled task may complete at once and come back for the lists.
    for (const Task &task : tasks)
        task->cancel();
}

void OSTImageManager::waitForDownload(const QUrl &url, Completion completion)
{
    const QString key = keyFor(url);
    quint64 serial = 0;
    QImage finished;
    {
        QMutexLocker locker(&m_downloads->lock);
        // A download of the same file may have finished since the caller looked: it is
        // remembered before its waiting list goes.
        if (const QImage *image = m_downloads->decoded.object(imageNameForURL(url))) {
            finished = *image;
        } else {
            const auto [entry, created] = m_downloads->pending.try_emplace(key);
            entry->second.completions.push_back(std::move(completion));
            if (!created)
                return;
            serial = entry->second.serial = ++m_downloads->nextSerial;
        }
    }
    if (!finished.isNull()) {
        deliver(completion, finished);
        return;
    }
    Task task = downloadImageWithURL(url);
    // The download may already have finished, and a new one for the same address begun.
    QMutexLocker locker(&m_downloads->lock);
    const auto entry = m_downloads->pending.find(key);
    if (entry != m_downloads->pending.end() && entry->second.serial == serial)
        entry->second.task = std::move(task);
}

bool OSTImageManager::isWaitingFor(const QUrl &url) const
{
    QMutexLocker locker(&m_downloads->lock);
    return m_downloads->pending.contains(keyFor(url));
}

void OSTImageManager::finishDownload(Downloads &downloads, const QUrl &url, const QImage &image)
{
    // Remembered and stored before the waiting list goes: a caller arriving in between joins
    // the list, one arriving after it finds the image, and none starts a second download.
    if (!image.isNull()) {
        const QString name = imageNameForURL(url);
        rememberImage(downloads, Origin::Elsewhere, name, image);
        downloads.files.saveImage(image, name);
    }
    std::vector<Completion> waiting;
    {
        QMutexLocker locker(&downloads.lock);
        const auto entry = downloads.pending.find(keyFor(url));
        if (entry != downloads.pending.end()) {
            waiting = std::move(entry->second.completions);
            downloads.pending.erase(entry);
        }
    }
    for (const Completion &completion : waiting)
        deliver(completion, image);
}

QImage OSTImageManager::rememberedImage(Downloads &downloads, Origin origin, const QString &name)
{
    QMutexLocker locker(&downloads.lock);
    const QImage *image = (origin == Origin::Host ? downloads.decodedHostImages : downloads.decoded).object(name);
    return image ? *image : QImage();
}

void OSTImageManager::rememberImage(Downloads &downloads, Origin origin, const QString &name, const QImage &image)
{
    QMutexLocker locker(&downloads.lock);
    (origin == Origin::Host ? downloads.decodedHostImages : downloads.decoded)
        .insert(name, new QImage(image), std::max<qsizetype>(1, image.sizeInBytes() / 1024));
}

QImage OSTImageManager::hostImage(Downloads &downloads, const QString &name)
{
    QImage image = rememberedImage(downloads, Origin::Host, name);
    if (image.isNull()) {
        image = hostImageNamed(name);
        if (!image.isNull())
            rememberImage(downloads, Origin::Host, name, image);
    }
    return image;
}

QImage OSTImageManager::hostImageNamed(const QString &name)
{
    // As with the platform's named images, a name without an extension means a PNG.
    const QString fileName = QFileInfo(name).suffix().isEmpty() ? name + u".png"_s : name;
    const QString bundlePath = OSTBundle::mainBundle()->bundlePath();
    for (const QString &path : {QDir(bundlePath).filePath(fileName), u":/"_s + fileName}) {
        if (!QFileInfo(path).isFile())
            continue;
        if (QImage image(path); !image.isNull())
            return image;
    }
    return {};
}

bool OSTImageManager::isDownloadable(const QUrl &url)
{
    return url.isValid() && isHTTP(url) && !url.host().isEmpty();
}

void OSTImageManager::deliver(const Completion &completion, const QImage &image)
{
    if (completion)
        OSTMainQueue::async([completion, image] { completion(image); });
}

} // namespace ostrel
