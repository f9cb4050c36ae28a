#include "support/OSTReferenceScreens.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace Qt::StringLiterals;

namespace ostrel::test {

namespace {

// Absolute paths: with a compiler cache __FILE__ may be relative to the build folder.
QDir widgetTestFolder()
{
    return QDir(QStringLiteral(OSTREL_TESTS_SOURCE_DIR "/widgets"));
}

QDir projectFolder()
{
    return QDir(QStringLiteral(OSTREL_TESTS_SOURCE_DIR "/.."));
}

ReferenceScreen sampleScreen(const QString &name)
{
    const QString path = widgetTestFolder().filePath(u"samples/%1.json"_s.arg(name));
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return {name, QString::fromUtf8(file.readAll()), name, widgetTestFolder().filePath(u"samples"_s), path};
}

QList<ReferenceScreen> experienceScreens(const QString &experienceFolder, const QString &prefix)
{
    const QDir folder(projectFolder().filePath(experienceFolder));
    QFile file(folder.filePath(u"experience.json"_s));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << experienceFolder.toStdString();
    const QJsonObject screens = QJsonDocument::fromJson(file.readAll()).object().value("splash"_L1).toObject();
    EXPECT_FALSE(screens.isEmpty()) << experienceFolder.toStdString();
    QList<ReferenceScreen> list;
    for (auto screen = screens.begin(); screen != screens.end(); ++screen) {
        const QString json = QString::fromUtf8(QJsonDocument(screen.value().toObject()).toJson());
        list.append({prefix + screen.key(), json, screen.key(), folder.filePath(u"images"_s), folder.path()});
    }
    return list;
}

int channelDistance(QRgb a, QRgb b)
{
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b)),
                     std::abs(qAlpha(a) - qAlpha(b))});
}

} // namespace

QList<ReferenceScreen> OSTReferenceScreens::all()
{
    QList<ReferenceScreen> list{sampleScreen(u"welcome"_s), sampleScreen(u"signup"_s)};
    list << experienceScreens(u"tests/widgets/samples/experience"_s, u"sample-experience-"_s)
         << experienceScreens(u"examples/experience"_s, u"example-"_s)
         << experienceScreens(u"examples/demo/experience"_s, u"demo-"_s);
    return list;
}

QString OSTReferenceScreens::referencePath(const ReferenceScreen &screen)
{
    return widgetTestFolder().filePath(u"references/%1.png"_s.arg(screen.referenceName));
}

double OSTReferenceScreens::differingShare(const QImage &actual, const QImage &expected, int tolerance)
{
    if (actual.size() != expected.size())
        return 1;
    qint64 differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(actual.constScanLine(y));
        const auto *e = reinterpret_cast<const QRgb *>(expected.constScanLine(y));
        for (int x = 0; x < actual.width(); ++x) {
            if (channelDistance(a[x], e[x]) > tolerance)
                ++differing;
        }
    }
    return double(differing) / (double(actual.width()) * actual.height());
}

} // namespace ostrel::test
