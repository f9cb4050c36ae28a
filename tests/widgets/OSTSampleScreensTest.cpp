// Every shipped and sample screen rendered at 375 × 667 points, ratio 2, compared with stored
// reference PNGs; and ostrel-preview, given the same screen, writes the same pixels as the SDK renders here.
//
// To accept a deliberate change of look, run with OSTREL_UPDATE_REFERENCES=1: the references are
// rewritten in the source tree (look at them before committing).

#include "OSTScreenTestSupport.h"

#include "platform/OSTBundle.h"
#include "support/OSTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

constexpr qreal sampleRatio = 2;
const QSizeF sampleArea(375, 667);

// Absolute paths: with a compiler cache __FILE__ may be relative to the build folder.
QDir testFolder()
{
    return QDir(QStringLiteral(QT_TESTCASE_SOURCEDIR "/widgets"));
}

QDir projectFolder()
{
    return QDir(QStringLiteral(QT_TESTCASE_SOURCEDIR "/.."));
}

QString sampleText(const QString &name)
{
    QFile file(testFolder().filePath(u"samples/%1.json"_s.arg(name)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << name.toStdString();
    return QString::fromUtf8(file.readAll());
}

QString substituteFirstName(const QString &text)
{
    return QString(text).replace(u"{first_name}"_s, u"Ada"_s);
}

QImage renderScreen(const QString &json, const QString &key, const QString &imagesFolder)
{
    OSTBundle::setMainBundlePath(imagesFolder); // where named images lie
    std::unique_ptr<OSTScreenView> view(
        OSTScreenView::create(test::screenWithJson(json, key), sampleArea, substituteFirstName));
    if (!view)
        return {};
    EXPECT_TRUE(test::waitUntil([&] { return view->isFullyLoaded(); }));
    return view->renderImage(sampleRatio).convertToFormat(QImage::Format_ARGB32);
}

QImage renderSample(const QString &name)
{
    return renderScreen(sampleText(name), name, testFolder().filePath(u"samples"_s));
}

// A screen with a stored reference picture: a screen file of the samples, or one screen of an
// experience file.
struct ReferenceScreen {
    QString referenceName;
    QString json;
    QString key;
    QString imagesFolder;
};

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
        list.append({prefix + screen.key(), json, screen.key(), folder.filePath(u"images"_s)});
    }
    return list;
}

// Every screen the project ships or tests with: the sample screens, the screens of the sample
// experience, of the example experience and of the demo.
QList<ReferenceScreen> referenceScreens()
{
    QList<ReferenceScreen> list;
    for (const QString &name : {u"welcome"_s, u"signup"_s})
        list.append({name, sampleText(name), name, testFolder().filePath(u"samples"_s)});
    list << experienceScreens(u"tests/widgets/samples/experience"_s, u"sample-experience-"_s)
         << experienceScreens(u"examples/experience"_s, u"example-"_s)
         << experienceScreens(u"examples/demo/experience"_s, u"demo-"_s);
    return list;
}

// The share of pixels whose channels differ by more than `tolerance`, or 1 when the sizes differ.
double differingShare(const QImage &actual, const QImage &expected, int tolerance)
{
    if (actual.size() != expected.size())
        return 1;
    qint64 differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        const auto *a = reinterpret_cast<const QRgb *>(actual.constScanLine(y));
        const auto *e = reinterpret_cast<const QRgb *>(expected.constScanLine(y));
        for (int x = 0; x < actual.width(); ++x) {
            if (std::abs(qRed(a[x]) - qRed(e[x])) > tolerance || std::abs(qGreen(a[x]) - qGreen(e[x])) > tolerance
                || std::abs(qBlue(a[x]) - qBlue(e[x])) > tolerance || std::abs(qAlpha(a[x]) - qAlpha(e[x])) > tolerance)
                ++differing;
        }
    }
    return double(differing) / (double(actual.width()) * actual.height());
}

const QStringList sampleNames = {u"welcome"_s, u"signup"_s};

// Pixel for pixel: the references were rendered before the screens' reading moved into one
// document, and any change of look must be deliberate.
TEST(SampleScreens, EveryScreenMatchesItsReferenceExactly)
{
    const QList<ReferenceScreen> screens = referenceScreens();
    ASSERT_GE(screens.size(), 16);
    for (const ReferenceScreen &screen : screens) {
        SCOPED_TRACE(screen.referenceName.toStdString());
        const QImage rendered = renderScreen(screen.json, screen.key, screen.imagesFolder);
        ASSERT_EQ(rendered.size(), QSize(750, 1334));
        const QString reference = testFolder().filePath(u"references/%1.png"_s.arg(screen.referenceName));
        if (qEnvironmentVariableIsSet("OSTREL_UPDATE_REFERENCES")) {
            ASSERT_TRUE(rendered.save(reference));
        }
        const QImage expected = QImage(reference).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(expected.isNull()) << "no reference at " << reference.toStdString();
        EXPECT_EQ(differingShare(rendered, expected, 0), 0.0);
    }
}

TEST(SampleScreens, PreviewWritesExactlyWhatTheScreenViewRenders)
{
#ifndef OSTREL_PREVIEW_PATH
    GTEST_SKIP() << "ostrel-preview is not built";
#else
    for (const QString &name : sampleNames) {
        SCOPED_TRACE(name.toStdString());
        const QImage rendered = renderSample(name);
        QTemporaryDir output;
        QProcess preview;
        preview.start(QString::fromUtf8(OSTREL_PREVIEW_PATH),
                      {testFolder().filePath(u"samples/%1.json"_s.arg(name)), u"--size"_s, u"375x667"_s, u"--ratio"_s,
                       u"2"_s, u"--var"_s, u"first_name=Ada"_s, u"--images"_s, testFolder().filePath(u"samples"_s),
                       u"-o"_s, output.filePath(u"out.png"_s)});
        ASSERT_TRUE(preview.waitForFinished(60000));
        EXPECT_EQ(preview.exitCode(), 0) << preview.readAllStandardError().toStdString();
        const QImage written = QImage(output.filePath(u"out.png"_s)).convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(written.size(), rendered.size());
        EXPECT_EQ(differingShare(written, rendered, 0), 0.0);
    }
#endif
}

} // namespace
} // namespace ostrel
