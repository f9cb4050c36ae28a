#include "core/OSTFileManager.h"

#include "support/OSTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QPainter>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace ostrel;
using namespace Qt::StringLiterals;

namespace {

QImage solidImage(QColor color, int size = 8)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

} // namespace

TEST(FileManager, BaseFolderLivesInTheApplicationDataAndIsTaggedAsCache)
{
    OSTFileManager &manager = OSTFileManager::sharedManager();
    EXPECT_EQ(manager.baseDirectory(),
              QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + u"/com.ostrelhq.ostrel"_s);
    for (const QString &folder : {manager.baseDirectory(), manager.baseDirectory() + u"/images"_s}) {
        QFile tag(folder + u"/CACHEDIR.TAG"_s);
        ASSERT_TRUE(tag.open(QIODevice::ReadOnly)) << folder.toStdString();
        EXPECT_TRUE(tag.readAll().startsWith("Signature: 8a477f597d28d172789f06886806bc55"));
    }
}

TEST(FileManager, WriteReadAndDeleteFiles)
{
    QTemporaryDir folder;
    OSTFileManager manager(folder.path());
    EXPECT_TRUE(manager.writeData("first", u"note.txt"_s));
    EXPECT_TRUE(manager.writeData("second", u"note.txt"_s));
    EXPECT_EQ(manager.readFile(u"note.txt"_s), QByteArray("second"));
    EXPECT_TRUE(manager.writeData("", u"empty.bin"_s));
    EXPECT_EQ(manager.readFile(u"empty.bin"_s), QByteArray());

    EXPECT_TRUE(manager.deleteFile(u"note.txt"_s));
    EXPECT_FALSE(manager.readFile(u"note.txt"_s));
    EXPECT_FALSE(manager.deleteFile(u"note.txt"_s)) << "a missing file cannot be deleted";

    EXPECT_FALSE(manager.writeData("x", u""_s));
    EXPECT_FALSE(manager.readFile(u""_s));
    EXPECT_TRUE(manager.deleteFile(u""_s)) << "nothing to do";
    EXPECT_TRUE(QDir(folder.path()).entryList({u".*tmp*"_s, u"*.new"_s}, QDir::Files | QDir::Hidden).isEmpty());
}

TEST(FileManager, NamesThatLeaveTheBaseFolderAreRefused)
{
    QTemporaryDir outside;
    QTemporaryDir folder;
    OSTFileManager manager(folder.path() + u"/base"_s);
    const QString escapee = outside.filePath(u"escapee.txt"_s);
    test::writeFile(escapee, "precious");

    const QString log = test::captureStandardError([&] {
        EXPECT_FALSE(manager.writeData("x", u"../escape.txt"_s));
        EXPECT_FALSE(manager.writeData("x", u"images/../../escape.txt"_s));
        EXPECT_FALSE(manager.writeData("x", escapee));
        EXPECT_FALSE(manager.readFile(escapee));
        EXPECT_FALSE(manager.deleteFile(escapee));
        EXPECT_FALSE(manager.saveImage(solidImage(Qt::red), u"../../x.png"_s));
    });
    EXPECT_TRUE(log.contains(u"Ostrel Warning: Refusing the file name \"../escape.txt\""_s)) << log.toStdString();
    EXPECT_FALSE(QFile::exists(folder.filePath(u"escape.txt"_s)));
    QFile kept(escapee);
    ASSERT_TRUE(kept.open(QIODevice::ReadOnly));
    EXPECT_EQ(kept.readAll(), "precious");
}

TEST(FileManager, ImagesRoundTripAsPngAtScaleTwo)
{
    QTemporaryDir folder;
    OSTFileManager manager(folder.path());
    EXPECT_TRUE(manager.saveImage(solidImage(Qt::red), u"logo.png"_s));
    EXPECT_TRUE(manager.saveImage(solidImage(Qt::blue, 10), u"logo.png"_s)) << "saving twice replaces";

    const QImage loaded = manager.loadImageWithName(u"logo.png"_s);
    ASSERT_FALSE(loaded.isNull());
    EXPECT_EQ(loaded.devicePixelRatio(), 2.0);
    EXPECT_EQ(loaded.size(), QSize(10, 10));
    EXPECT_EQ(loaded.pixelColor(5, 5), QColor(Qt::blue));
    const auto bytes = manager.readFile(u"images/logo.png"_s);
    ASSERT_TRUE(bytes);
    EXPECT_TRUE(bytes->startsWith("\x89PNG"));

    EXPECT_TRUE(manager.loadImageWithName(u"never.png"_s).isNull());
    EXPECT_FALSE(manager.deleteImageWithName(u"never.png"_s));
    EXPECT_TRUE(manager.deleteImageWithName(u""_s));
    EXPECT_FALSE(manager.saveImage(solidImage(Qt::red), u""_s));
    EXPECT_TRUE(manager.deleteImageWithName(u"logo.png"_s));
    EXPECT_TRUE(manager.loadImageWithName(u"logo.png"_s).isNull());

    test::writeFile(folder.filePath(u"images/garbage.png"_s), "not an image");
    EXPECT_TRUE(manager.loadImageWithName(u"garbage.png"_s).isNull());
}
