// Every shipped and sample screen rendered at 375 × 667 points, ratio 2, compared with stored
// reference PNGs; and ostrel-preview, given the same screen, writes the same pixels as the SDK renders here.
//
// To accept a deliberate change of look, run with OSTREL_UPDATE_REFERENCES=1: the references are
// rewritten in the source tree (look at them before committing).

#include "OSTScreenTestSupport.h"

#include "platform/OSTBundle.h"
#include "support/OSTReferenceScreens.h"
#include "support/OSTTestSupport.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
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

const QStringList sampleNames = {u"welcome"_s, u"signup"_s};

// Pixel for pixel: the references were rendered before the screens' reading moved into one
// document, and any change of look must be deliberate.
TEST(SampleScreens, EveryScreenMatchesItsReferenceExactly)
{
    const QList<test::ReferenceScreen> screens = test::OSTReferenceScreens::all();
    ASSERT_GE(screens.size(), 16);
    for (const test::ReferenceScreen &screen : screens) {
        SCOPED_TRACE(screen.referenceName.toStdString());
        const QImage rendered = renderScreen(screen.json, screen.key, screen.imagesFolder);
        ASSERT_EQ(rendered.size(), QSize(750, 1334));
        const QString reference = test::OSTReferenceScreens::referencePath(screen);
        if (qEnvironmentVariableIsSet("OSTREL_UPDATE_REFERENCES")) {
            ASSERT_TRUE(rendered.save(reference));
        }
        const QImage expected = QImage(reference).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(expected.isNull()) << "no reference at " << reference.toStdString();
        EXPECT_EQ(test::OSTReferenceScreens::differingShare(rendered, expected, 0), 0.0);
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
        EXPECT_EQ(test::OSTReferenceScreens::differingShare(written, rendered, 0), 0.0);
    }
#endif
}

} // namespace
} // namespace ostrel
