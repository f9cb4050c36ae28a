#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

#include <optional>

namespace ostrel {

// The SDK's private files: the folder "com.ostrelhq.ostrel" with its subfolder "images" under
// QStandardPaths::AppDataLocation. Both folders carry a CACHEDIR.TAG, the convention by which
// backup tools skip caches. Every name is relative to the base folder; an empty name, an absolute
// path or one that climbs out with ".." is refused. Writes are atomic. No lock: callers serialise
// writes to the same name.
class OSTFileManager {
public:
    static OSTFileManager &sharedManager();

    // Uses `baseDirectory` as the base folder, creating it and "images" when missing.
    explicit OSTFileManager(const QString &baseDirectory);

    // The base folder "com.ostrelhq.ostrel" under the application's data location.
    static QString defaultBaseDirectory();
    QString baseDirectory() const { return m_baseDirectory; }

    // Replaces any existing file. False for a refused name or a failed write.
    bool writeData(const QByteArray &data, const QString &fileName) const;
    // Nothing for a refused name or a missing file.
    std::optional<QByteArray> readFile(const QString &fileName) const;
    // True for "" (nothing to do); false for a missing file or a refused name.
    bool deleteFile(const QString &fileName) const;

    // The image as PNG in "images/<name>".
    bool saveImage(const QImage &image, const QString &name) const;
    // The image of "images/<name>" at device pixel ratio 2.0; a null image when missing.
    QImage loadImageWithName(const QString &name) const;
    bool deleteImageWithName(const QString &name) const;

private:
    // The absolute path of `fileName`, or an empty string when the name is refused.
    QString resolve(const QString &fileName) const;
    static void prepareFolder(const QString &path);

    const QString m_baseDirectory;
};

} // namespace ostrel
