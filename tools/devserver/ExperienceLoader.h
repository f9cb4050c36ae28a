#pragma once

#include <QJsonObject>
#include <QSet>
#include <QString>

namespace ostrel::devserver {

// Reads the experience folder on every use, so edits show at the next launch:
//  - experience.json: {"flow": {...}, "splash": {key: screen JSON object}, "metadata":
//    {"splash_screen": {key: screen metadata}}}, the shape of the SDK's local default file;
//  - config.json (or the file named at start): further keys of the launch response, taken as
//    they stand ("session_delay", "session_delay_cap", "show_key", "is_qa", "app_user", the
//    attribution keys...);
//  - images/: files served under /images/<name>.
// Unreadable files are reported on standard error and read as empty.
class ExperienceLoader {
public:
    // `configurationPath` empty means `folder`/config.json.
    ExperienceLoader(const QString &folder, const QString &configurationPath);

    // {"flow": ..., "splash_screen": ...} for a launch: each screen's metadata with its JSON as
    // text under "json_data" (left out when its "json_version" is in `cachedVersions`) and a
    // "json_version" (derived from the text when the metadata names none).
    QJsonObject delivery(const QSet<QString> &cachedVersions) const;
    QJsonObject launchConfiguration() const;
    // The file for an image name, or an empty string when there is none.
    QString imagePath(const QString &name) const;

    // A version for screen JSON text that changes whenever the text does.
    static QString versionOfScreenText(const QByteArray &text);

private:
    static QJsonObject readObject(const QString &path);

    QString m_folder;
    QString m_configurationPath;
};

} // namespace ostrel::devserver
