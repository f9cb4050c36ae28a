#include "ExperienceLoader.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonParseError>
#include <QTextStream>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

ExperienceLoader::ExperienceLoader(const QString &folder, const QString &configurationPath)
    : m_folder(folder),
      m_configurationPath(configurationPath.isEmpty() && !folder.isEmpty() ? QDir(folder).filePath(u"config.json"_s)
                                                                          : configurationPath)
{
}

QJsonObject ExperienceLoader::delivery(const QSet<QString> &cachedVersions) const
{
    if (m_folder.isEmpty())
        return {};
    const QJsonObject experience = readObject(QDir(m_folder).filePath(u"experience.json"_s));
    const QJsonObject screens = experience.value(u"splash"_s).toObject();
    QJsonObject metadata = experience.value(u"metadata"_s).toObject().value(u"splash_screen"_s).toObject();
    for (auto screen = screens.begin(); screen != screens.end(); ++screen) {
        if (!metadata.contains(screen.key()))
            metadata.insert(screen.key(), QJsonObject());
    }

    QJsonObject splashScreens;
    for (auto entry = metadata.begin(); entry != metadata.end(); ++entry) {
        QJsonObject screen = entry.value().toObject();
        if (screens.value(entry.key()).isObject()) {
            const QByteArray text = QJsonDocument(screens.value(entry.key()).toObject()).toJson(QJsonDocument::Compact);
            if (!screen.value(u"json_version"_s).isString())
                screen.insert(u"json_version"_s, versionOfScreenText(text));
            screen.insert(u"json_data"_s, QString::fromUtf8(text));
        }
        if (cachedVersions.contains(screen.value(u"json_version"_s).toString()))
            screen.remove(u"json_data"_s);
        splashScreens.insert(entry.key(), screen);
    }
    return QJsonObject{{u"flow"_s, experience.value(u"flow"_s).toObject()}, {u"splash_screen"_s, splashScreens}};
}

QJsonObject ExperienceLoader::launchConfiguration() const
{
    if (m_configurationPath.isEmpty() || !QFileInfo::exists(m_configurationPath))
        return {};
    return readObject(m_configurationPath);
}

QString ExperienceLoader::imagePath(const QString &name) const
{
    if (m_folder.isEmpty() || name.isEmpty() || name.contains(u'/') || name.startsWith(u'.'))
        return {};
    const QString path = QDir(m_folder).filePath(u"images/"_s + name);
    return QFileInfo(path).isFile() ? path : QString();
}

QString ExperienceLoader::versionOfScreenText(const QByteArray &text)
{
    return QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Md5).toHex().left(16));
}

QJsonObject ExperienceLoader::readObject(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        QTextStream(stderr) << "cannot read " << path << Qt::endl;
        return {};
    }
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &error);
    if (!document.isObject()) {
        QTextStream(stderr) << path << " is not a JSON object: " << error.errorString() << Qt::endl;
        return {};
    }
    return document.object();
}

} // namespace ostrel::devserver
