// The image manager against ostrel-devserver's image route: where images come from, how many
// downloads a burst of callers costs, and what hostile addresses and bodies end up as.

#include "OSTNetworkTestSupport.h"

#include "core/OSTFileManager.h"
#include "core/OSTLogging.h"
#include "network/OSTImageManager.h"
#include "platform/OSTBundle.h"
#include "support/OSTDevServerProcess.h"
#include "support/OSTTestSupport.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QImage>
#include <QTemporaryDir>
#include <QThread>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

// A fault with many uses left and no effect: the service counts down its uses, one per GET of
// an image, which makes the count of image downloads readable.
constexpr int countingUses = 1000;

// What one load delivered, and on which thread.
struct LoadOutcome {
    OSTImageManager::Completion completion()
    {
        return [this](const QImage &delivered) {
            image = delivered;
            onGUIThread = QThread::currentThread() == QCoreApplication::instance()->thread();
            calls.fetch_add(1);
        };
    }
    bool wait() { return test::waitUntil([this] { return calls.load() > 0; }); }

    QImage image;
    bool onGUIThread = false;
    std::atomic<int> calls{0};
};

class ImageManagerTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        OSTLogging::setLoggingLevel(OSTLoggingLevelDebug);
        OSTBundle::setMainBundlePath(bundle.path());
    }

    bool startCountingServer(double answerDelaySeconds = 0)
    {
        if (!server.start())
            return false;
        return server.setFault({{u"endpoint"_s, u"images"_s}, {u"times"_s, countingUses},
                                {u"delay"_s, answerDelaySeconds}});
    }

    int imageGETs()
    {
        for (const QVariant &fault : server.faults()) {
            const QVariantMap entry = fault.toMap();
            if (entry.value(u"endpoint"_s) == u"images"_s)
                return countingUses - entry.value(u"times"_s).toInt();
        }
        return countingUses;
    }

    QUrl imageURL(const QString &name) const { return QUrl(server.serviceURL().toString() + u"/images/"_s + name); }
    static QString imagesFolder() { return OSTFileManager::sharedManager().baseDirectory() + u"/images"_s; }
    static bool isCached(const QString &name) { return QFileInfo::exists(imagesFolder() + u'/' + name); }
    static OSTImageManager &manager() { return OSTImageManager::sharedManager(); }

    QTemporaryDir bundle;
    test::OSTDevServerProcess server;
};

// The tests that need the development service.
class ServedImageManagerTest : public ImageManagerTest {
protected:
    void SetUp() override
    {
        ImageManagerTest::SetUp();
        if (!test::OSTDevServerProcess::isAvailable())
            GTEST_SKIP() << "ostrel-devserver is not built";
    }
};

} // namespace

TEST_F(ServedImageManagerTest, CallersOfOneAddressShareOneDownloadAndLaterRunsUseTheCache)
{
    server.writeImage(u"logo.png"_s, test::pngOfColor(Qt::red));
    ASSERT_TRUE(startCountingServer());

    // Two loads on the GUI thread and three from other threads, all before the image arrives.
    std::vector<std::unique_ptr<LoadOutcome>> outcomes;
    for (int i = 0; i < 5; ++i)
        outcomes.push_back(std::make_unique<LoadOutcome>());
    manager().loadImageWithURL(imageURL(u"logo.png"_s), outcomes[0]->completion());
    manager().loadImageWithURL(imageURL(u"logo.png"_s), outcomes[1]->completion());
    std::vector<std::thread> threads;
    for (int i = 2; i < 5; ++i)
        threads.emplace_back([&, i] { manager().loadImageWithURL(imageURL(u"logo.png"_s), outcomes[i]->completion()); });
    for (auto &thread : threads)
        thread.join();

    for (const auto &outcome : outcomes) {
        ASSERT_TRUE(outcome->wait());
        EXPECT_EQ(outcome->image.pixelColor(0, 0), QColor(Qt::red));
        EXPECT_TRUE(outcome->onGUIThread);
        EXPECT_EQ(outcome->calls.load(), 1);
    }
    EXPECT_EQ(imageGETs(), 1);
    EXPECT_TRUE(isCached(u"logo.png"_s));

    // A later run: a fresh manager over the same folder finds the image without the network, and
    // still answers later, on the GUI thread.
    OSTImageManager nextRun(OSTFileManager::sharedManager());
    LoadOutcome cached;
    nextRun.loadImageWithURL(imageURL(u"logo.png"_s), cached.completion());
    EXPECT_EQ(cached.calls.load(), 0) << "a cache hit is still delivered asynchronously";
    ASSERT_TRUE(cached.wait());
    EXPECT_EQ(cached.image.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_TRUE(cached.onGUIThread);
    // Another address ending in the same file name shares the entry, deliberately.
    LoadOutcome sameName;
    nextRun.loadImageWithURL(QUrl(server.serviceURL().toString() + u"/images/other/logo.png"_s), sameName.completion());
    ASSERT_TRUE(sameName.wait());
    EXPECT_FALSE(sameName.image.isNull());
    EXPECT_EQ(imageGETs(), 1);
}

TEST_F(ImageManagerTest, HostImageNamedLikeTheAddressesFileIsUsedWithoutNetwork)
{
    test::writeFile(bundle.filePath(u"logo.png"_s), test::pngOfColor(Qt::green));
    // Nothing listens on this port: any network access would yield no image.
    const QString base = u"https://127.0.0.1:%1/images/"_s.arg(test::closedLoopbackPort());

    LoadOutcome byFileName;
    manager().loadImageWithURL(QUrl(base + u"logo.png"_s), byFileName.completion());
    LoadOutcome percentEncoded;
    test::writeFile(bundle.filePath(u"big logo.png"_s), test::pngOfColor(Qt::blue));
    manager().loadImageWithURL(QUrl(base + u"big%20logo.png"_s), percentEncoded.completion());
    LoadOutcome plainName;
    manager().loadImageWithURL(QUrl(u"logo"_s), plainName.completion());

    ASSERT_TRUE(byFileName.wait() && percentEncoded.wait() && plainName.wait());
    EXPECT_EQ(byFileName.image.pixelColor(0, 0), QColor(Qt::green));
    EXPECT_EQ(percentEncoded.image.pixelColor(0, 0), QColor(Qt::blue));
    EXPECT_EQ(plainName.image.pixelColor(0, 0), QColor(Qt::green)) << "a name without extension means a PNG";
    EXPECT_FALSE(isCached(u"logo.png"_s)) << "host images are not copied into the cache";
}

TEST_F(ServedImageManagerTest, MutedDownloadsStillFillTheCacheButCallNobody)
{
    server.writeImage(u"muted.png"_s, test::pngOfColor(Qt::red));
    server.writeImage(u"after.png"_s, test::pngOfColor(Qt::blue));
    // Every answer is held until the service's clock moves, so the mute comes first.
    ASSERT_TRUE(startCountingServer(1));

    LoadOutcome muted;
    manager().loadImageWithURL(imageURL(u"muted.png"_s), muted.completion());
    manager().muteAllDownloads();
    LoadOutcome joinedAfterMute;
    manager().loadImageWithURL(imageURL(u"muted.png"_s), joinedAfterMute.completion());
    ASSERT_TRUE(test::waitUntil([&] { return imageGETs() == 1; }));
    ASSERT_TRUE(server.advanceClock(1));
    ASSERT_TRUE(test::waitUntil([] { return isCached(u"muted.png"_s); }));

    // Downloads complete one after the other on the download session's queue and post to the GUI
    // thread in order: once a later download has been delivered, the muted one has been too.
    LoadOutcome later;
    manager().loadImageWithURL(imageURL(u"after.png"_s), later.completion());
    ASSERT_TRUE(test::waitUntil([&] { return imageGETs() == 2; }));
    ASSERT_TRUE(server.advanceClock(1));
    ASSERT_TRUE(later.wait());
    ASSERT_TRUE(joinedAfterMute.wait()) << "a caller joining after the mute is served";
    EXPECT_EQ(muted.calls.load(), 0);
    EXPECT_EQ(joinedAfterMute.image.pixelColor(0, 0), QColor(Qt::red));
    EXPECT_EQ(imageGETs(), 2) << "joining a muted download starts no second one";
}

TEST_F(ServedImageManagerTest, PreloadingLogsAndSkipsWhatIsCachedOrOnItsWay)
{
    server.writeImage(u"hero.png"_s, test::pngOfColor(Qt::red));
    ASSERT_TRUE(startCountingServer());

    const QString log = test::captureStandardError([&] {
        manager().preloadImageWithURL(imageURL(u"hero.png"_s));
        manager().preloadImageWithURL(imageURL(u"hero.png"_s));
        manager().preloadImageWithURL(imageURL(u"absent.png"_s));
        manager().preloadImageWithURL(QUrl(u"hero.png"_s));
        // Joining both downloads: these run after the preloads' own completions.
        LoadOutcome hero;
        LoadOutcome absent;
        manager().loadImageWithURL(imageURL(u"hero.png"_s), hero.completion());
        manager().loadImageWithURL(imageURL(u"absent.png"_s), absent.completion());
        ASSERT_TRUE(hero.wait() && absent.wait());
        EXPECT_TRUE(absent.image.isNull());
        manager().preloadImageWithURL(imageURL(u"hero.png"_s));
    });

    EXPECT_EQ(log.count(u"Preloading image: "_s + imageURL(u"hero.png"_s).toString()), 1);
    EXPECT_EQ(log.count(u"Preloading image: "_s + imageURL(u"absent.png"_s).toString()), 1);
    EXPECT_EQ(log.count(u"Failed to preload image: "_s + imageURL(u"absent.png"_s).toString()), 1);
    EXPECT_FALSE(log.contains(u"Failed to preload image: "_s + imageURL(u"hero.png"_s).toString()));
    EXPECT_EQ(imageGETs(), 2) << "the second and the cached preload download nothing";

    // The host's own image of that name wins over the download already in memory.
    test::writeFile(bundle.filePath(u"hero.png"_s), test::pngOfColor(Qt::green));
    LoadOutcome hostsOwn;
    manager().loadImageWithURL(imageURL(u"hero.png"_s), hostsOwn.completion());
    ASSERT_TRUE(hostsOwn.wait());
    EXPECT_EQ(hostsOwn.image.pixelColor(0, 0), QColor(Qt::green));
}

TEST_F(ServedImageManagerTest, HostileAddressesAndBodiesGiveNoImageAndWriteNothingOutsideTheImagesFolder)
{
    const QByteArray png = test::pngOfColor(Qt::red, 64);
    server.writeImage(u"page.png"_s, "<!doctype html><html><body>Not found</body></html>");
    server.writeImage(u"truncated.png"_s, png.left(png.size() / 2));
    server.writeImage(u"huge.png"_s, png + QByteArray(50 * 1024 * 1024, '\0'));
    ASSERT_TRUE(startCountingServer());
    const QString images = server.serviceURL().toString() + u"/images/"_s;

    struct Case {
        QString address;
        QString logged;
    };
    const std::vector<Case> cases = {
        {u"not a url"_s, u"not an http or https address"_s},
        {u"file:///etc/hostname"_s, u"names no file"_s},
        {images, u"names no file"_s},
        {images + u"%2E%2E"_s, u"names no file"_s},
        {images + u"..%2F..%2Fescape.png"_s, u"names no file"_s},
        {images + u"page.png"_s, u"could not be decoded"_s},
        {images + u"truncated.png"_s, u"could not be decoded"_s},
        {images + u"missing.png"_s, u"failed"_s},
        {images + u"huge.png"_s, u"failed"_s},
    };
    for (const Case &hostile : cases) {
        LoadOutcome outcome;
        const QString log = test::captureStandardError([&] {
            manager().loadImageWithURL(QUrl(hostile.address), outcome.completion());
            ASSERT_TRUE(outcome.wait());
        });
        EXPECT_TRUE(outcome.image.isNull()) << hostile.address.toStdString();
        EXPECT_TRUE(log.contains(u"Ostrel Debug: "_s)) << hostile.address.toStdString();
        EXPECT_TRUE(log.contains(hostile.logged, Qt::CaseInsensitive))
            << hostile.address.toStdString() << ": " << log.toStdString();
    }

    // Nothing was cached, in the images folder or anywhere else under the SDK's folder.
    QStringList files;
    for (QDirIterator it(OSTFileManager::sharedManager().baseDirectory(), QDir::Files | QDir::Hidden,
                         QDirIterator::Subdirectories);
         it.hasNext();)
        files.append(QFileInfo(it.next()).fileName());
    files.removeAll(u"CACHEDIR.TAG"_s);
    EXPECT_TRUE(files.isEmpty()) << files.join(u", "_s).toStdString();
    const QString home = QFileInfo(qEnvironmentVariable("XDG_DATA_HOME")).path();
    for (QDirIterator it(home, {u"escape.png"_s}, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
        ADD_FAILURE() << "written outside the images folder: " << it.next().toStdString();
}

TEST_F(ServedImageManagerTest, CancelledDownloadsReachEveryWaitingCallerAsNoImage)
{
    server.writeImage(u"slow.png"_s, test::pngOfColor(Qt::red));
    // The answer would come after half a minute; the cancel must not wait for it.
    ASSERT_TRUE(server.start({.faults = {u"images:delay=30,times=1"_s}}));

    LoadOutcome first;
    LoadOutcome second;
    manager().loadImageWithURL(imageURL(u"slow.png"_s), first.completion());
    manager().loadImageWithURL(imageURL(u"slow.png"_s), second.completion());
    manager().cancellAllDownloads();

    ASSERT_TRUE(first.wait() && second.wait());
    EXPECT_TRUE(first.image.isNull());
    EXPECT_TRUE(second.image.isNull());
    EXPECT_FALSE(isCached(u"slow.png"_s));
}
