#include "ScreenSource.h"

#include "JsonLocator.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

ScreenSource ScreenSource::load(const QString &file, const QString &screenKey)
{
    ScreenSource source;
    const QFileInfo info(file);
    source.path = info.isDir() ? QDir(file).filePath(u"experience.json"_s) : file;
    QFile input(source.path);
    if (!input.open(QIODevice::ReadOnly)) {
        source.error = u"cannot read %1: %2"_s.arg(source.path, input.errorString());
        return source;
    }
    source.fileText = input.readAll();
    source.screenText = source.fileText;
    source.screenKey = screenKey.isEmpty() ? info.completeBaseName() : screenKey;
    const QJsonObject document = QJsonDocument::fromJson(source.fileText).object();
    const QJsonValue splash = document.value("splash"_L1);
    if (!splash.isObject())
        return source; // a screen file (or text that does not parse, which the checks report)
    const QJsonObject screens = splash.toObject();
    if (screens.isEmpty() || (!screenKey.isEmpty() && !screens.contains(screenKey))) {
        source.error = u"%1 has no screen \"%2\"; it has: %3"_s.arg(source.path, screenKey,
                                                                       screens.keys().join(u", "_s));
        return source;
    }
    source.screenKey = screenKey.isEmpty() ? screens.begin().key() : screenKey;
    source.screenText = QJsonDocument(screens.value(source.screenKey).toObject()).toJson();
    source.pointerPrefix = JsonLocator::appendToPointer(u"/splash"_s, source.screenKey);
    source.imagesFolder = QFileInfo(source.path).dir().filePath(u"images"_s);
    return source;
}
