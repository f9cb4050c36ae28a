#pragma once

#include <QImage>
#include <QSizeF>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

namespace ostrel {

// A folder that holds an Info.json (a JSON object of configuration keys) and resource files.
// The main bundle is the host executable's folder unless the host names another one.
// Immutable after construction, so a bundle may be shared between threads.
class OSTBundle {
public:
    explicit OSTBundle(const QString &path);

    // The host application's bundle. Thread-safe; the returned bundle stays valid even if the
    // host later names another main bundle.
    static std::shared_ptr<const OSTBundle> mainBundle();
    // Makes the folder at `path` the main bundle from now on.
    static void setMainBundlePath(const QString &path);

    QString bundlePath() const { return m_path; }
    // The parsed Info.json; empty when the file is missing or is not a JSON object.
    const QVariantMap &infoDictionary() const { return m_infoDictionary; }
    // Why Info.json could not be read, or an empty string. Reported by the SDK's start-up rather
    // than here, because logging itself consults the main bundle.
    QString infoDictionaryError() const { return m_infoDictionaryError; }
    QVariant objectForInfoDictionaryKey(const QString &key) const;
    // "UILaunchStoryboardName": the name of the launch form, when it is a non-empty string.
    std::optional<QString> launchStoryboardName() const;
    // The first "*LaunchImage*.png" at the top of the bundle (in file-name order) whose scale (from
    // an "@2x"-style suffix, else 1) equals `devicePixelRatio` and whose size in points equals
    // `areaSize`; a null image when none does. The image's device pixel ratio is its scale.
    QImage launchImage(QSizeF areaSize, double devicePixelRatio) const;
    // Absolute path of the resource file "name.extension" in the bundle, or an empty string when
    // there is no such file.
    QString pathForResource(const QString &name, const QString &extension) const;

private:
    void loadInfoDictionary();

    QString m_path;
    QVariantMap m_infoDictionary;
    QString m_infoDictionaryError;
};

} // namespace ostrel
