#include "platform/OSTBundle.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutex>
#include <QMutexLocker>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

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

} // namespace ostrel
