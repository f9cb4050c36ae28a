#include "platform/OSTBundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QMutex>
#include <QMutexLocker>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

Q_LOGGING_CATEGORY(bundleLog, "ostrel.bundle")

const QString launchImageMarker = QStringLiteral("LaunchImage");

// "Default-LaunchImage@2x.png" has scale 2; a name without the suffix has scale 1.
double scaleOfImageNamed(const QString &fileName)
{
    static const QRegularExpression scaleSuffix(QStringLiteral("@(\\d+)x\\.png$"));
    const QRegularExpressionMatch match = scaleSuffix.match(fileName);
    return match.hasMatch() ? match.captured(1).toDouble() : 1.0;
}

bool fitsArea(const QSize &pixelSize, double scale, QSizeF areaSize, double devicePixelRatio)
{
    if (scale != devicePixelRatio || !pixelSize.isValid())
        return false;
    return pixelSize.width() / scale == areaSize.width() && pixelSize.height() / scale == areaSize.height();
}

QString executableFolder()
{
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QFileInfo(u"/proc/self/exe"_s).canonicalFilePath().section(u'/', 0, -2);
}

struct MainBundleSlot {
    QMutex mutex;
    std::shared_ptr<const OSTBundle> bundle;
};

MainBundleSlot &mainBundleSlot()
{
    // Never destroyed: threads still running at exit may read the bundle.
    static MainBundleSlot *slot = new MainBundleSlot;
    return *slot;
}

} // namespace

OSTBundle::OSTBundle(const QString &path) : m_path(QDir(path).absolutePath())
{
    loadInfoDictionary();
}

std::shared_ptr<const OSTBundle> OSTBundle::mainBundle()
{
    MainBundleSlot &slot = mainBundleSlot();
    QMutexLocker locker(&slot.mutex);
    if (!slot.bundle)
        slot.bundle = std::make_shared<const OSTBundle>(executableFolder());
    return slot.bundle;
}

void OSTBundle::setMainBundlePath(const QString &path)
{
    auto bundle = std::make_shared<const OSTBundle>(path);
    MainBundleSlot &slot = mainBundleSlot();
    QMutexLocker locker(&slot.mutex);
    slot.bundle = std::move(bundle);
}

QVariant OSTBundle::objectForInfoDictionaryKey(const QString &key) const
{
    return m_infoDictionary.value(key);
}

std::optional<QString> OSTBundle::launchStoryboardName() const
{
    const QVariant name = m_infoDictionary.value(u"UILaunchStoryboardName"_s);
    if (name.metaType() != QMetaType::fromType<QString>() || name.toString().isEmpty())
        return std::nullopt;
    return name.toString();
}

QString OSTBundle::pathForResource(const QString &name, const QString &extension) const
{
    if (name.isEmpty())
        return {};
    const QString fileName = extension.isEmpty() ? name : name + u'.' + extension;
    const QFileInfo info(QDir(m_path), fileName);
    return info.isFile() ? info.absoluteFilePath() : QString();
}

void OSTBundle::loadInfoDictionary()
{
    QFile file(QDir(m_path).filePath(u"Info.json"_s));
    if (!file.exists())
        return;
    if (!file.open(QIODevice::ReadOnly)) {
        m_infoDictionaryError = u"cannot open %1: %2"_s.arg(file.fileName(), file.errorString());
        return;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!document.isObject()) {
        m_infoDictionaryError = parseError.error != QJsonParseError::NoError
            ? u"%1 is not valid JSON: %2"_s.arg(file.fileName(), parseError.errorString())
            : u"%1 does not hold a JSON object"_s.arg(file.fileName());
        return;
    }
    m_infoDictionary = document.object().toVariantMap();
}

QImage OSTBundle::launchImage(QSizeF areaSize, double devicePixelRatio) const
{
    const QDir folder(bundlePath());
    const QStringList names = folder.entryList({QStringLiteral("*.png")}, QDir::Files, QDir::Name);
    for (const QString &name : names) {
        if (!name.contains(launchImageMarker))
            continue;
        QImageReader reader(folder.filePath(name));
        const double scale = scaleOfImageNamed(name);
        if (!fitsArea(reader.size(), scale, areaSize, devicePixelRatio))
            continue;
        QImage image = reader.read();
        if (image.isNull()) {
            qCWarning(bundleLog).noquote() << "Cannot read the launch image" << name << ":" << reader.errorString();
            continue;
        }
        image.setDevicePixelRatio(scale);
        return image;
    }
    return {};
}

} // namespace ostrel
