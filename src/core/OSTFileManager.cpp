#include "core/OSTFileManager.h"

#include "core/OSTLogging.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString imagesFolder = u"images"_s;

const QByteArray cacheDirectoryTag =
    "Signature: 8a477f597d28d172789f06886806bc55\n"
    "# This file is a cache directory tag created by the Ostrel SDK.\n"
    "# Its downloaded images can be fetched again and need no backup.\n";

QString imagePath(const QString &name)
{
    return name.isEmpty() ? QString() : imagesFolder + u'/' + name;
}

} // namespace

OSTFileManager &OSTFileManager::sharedManager()
{
    static OSTFileManager *manager = new OSTFileManager(defaultBaseDirectory());
    return *manager;
}

QString OSTFileManager::defaultBaseDirectory()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
        + u"/com.ostrelhq.ostrel"_s;
}

OSTFileManager::OSTFileManager(const QString &baseDirectory)
    : m_baseDirectory(QDir::cleanPath(QDir(baseDirectory).absolutePath()))
{
    // Failures are not fatal: later writes into a missing folder simply return false.
    prepareFolder(m_baseDirectory);
    prepareFolder(m_baseDirectory + u'/' + imagesFolder);
}

void OSTFileManager::prepareFolder(const QString &path)
{
    if (!QDir().mkpath(path))
        return;
    const QString tagPath = path + u"/CACHEDIR.TAG"_s;
    if (QFile::exists(tagPath))
        return;
    QSaveFile tag(tagPath);
    if (tag.open(QIODevice::WriteOnly)) {
        tag.write(cacheDirectoryTag);
        tag.commit();
    }
}

QString OSTFileManager::resolve(const QString &fileName) const
{
    if (fileName.isEmpty())
        return {};
    const bool climbsOut = fileName.split(u'/').contains(u".."_s);
    if (QDir::isAbsolutePath(fileName) || climbsOut || fileName.contains(QChar(0))) {
        OSTLogging::logWarning(u"Refusing the file name \"%1\": names must stay inside the SDK's folder."_s,
                               fileName);
        return {};
    }
    return QDir::cleanPath(m_baseDirectory + u'/' + fileName);
}

bool OSTFileManager::writeData(const QByteArray &data, const QString &fileName) const
{
    const QString path = resolve(fileName);
    if (path.isEmpty())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(data) != data.size() || !file.commit()) {
        OSTLogging::logDebug(u"Could not write \"%1\": %2"_s, fileName, file.errorString());
        return false;
    }
    return true;
}

std::optional<QByteArray> OSTFileManager::readFile(const QString &fileName) const
{
    const QString path = resolve(fileName);
    if (path.isEmpty())
        return std::nullopt;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return file.readAll();
}

bool OSTFileManager::deleteFile(const QString &fileName) const
{
    if (fileName.isEmpty())
        return true;
    const QString path = resolve(fileName);
    return !path.isEmpty() && QFileInfo(path).isFile() && QFile::remove(path);
}

bool OSTFileManager::saveImage(const QImage &image, const QString &name) const
{
    if (name.isEmpty() || image.isNull())
        return false;
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!image.save(&buffer, "PNG"))
        return false;
    return writeData(png, imagePath(name));
}

QImage OSTFileManager::loadImageWithName(const QString &name) const
{
    const auto data = readFile(imagePath(name));
    if (!data)
        return {};
    QImage image = QImage::fromData(*data);
    if (!image.isNull())
        image.setDevicePixelRatio(2.0);
    return image;
}

bool OSTFileManager::deleteImageWithName(const QString &name) const
{
    return name.isEmpty() || deleteFile(imagePath(name));
}

} // namespace ostrel
