// Complete sample screens rendered at 375 × 667 points, ratio 2, compared with stored reference
// PNGs; and ostrel-preview, given the same screen, writes the same pixels as the SDK renders here.
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
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

constexpr qreal sampleRatio = 2;
const QSizeF sampleArea(375, 667);

// An absolute path: with a compiler cache __FILE__ may be relative to the build folder.
QDir testFolder()
{
    return QDir(QStringLiteral(QT_TESTCASE_SOURCEDIR "/presentation"));
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

QImage renderSample(const QString &name)
{
    OSTBundle::setMainBundlePath(testFolder().filePath(u"samples"_s)); // where "logo.png" lies
    std::unique_ptr<OSTScreenView> view(
        OSTScreenView::create(test::screenWithJson(sampleText(name), name), sampleArea, substituteFirstName));
    if (!view)
        return {};
    EXPECT_TRUE(test::waitUntil([&] { return view->isFullyLoaded(); }));
    return view->renderImage(sampleRatio).convertToFormat(QImage::Format_ARGB32);
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

TEST(SampleScreens, EachSampleMatchesItsReference)
{
    for (const QString &name : sampleNames) {
        SCOPED_TRACE(name.toStdString());
        const QImage rendered = renderSample(name);
        ASSERT_EQ(rendered.size(), QSize(750, 1334));
        const QString reference = testFolder().filePath(u"references/%1.png"_s.arg(name));
        if (qEnvironmentVariableIsSet("OSTREL_UPDATE_REFERENCES")) {
            ASSERT_TRUE(rendered.save(reference));
        }
        const QImage expected = QImage(reference).convertToFormat(QImage::Format_ARGB32);
        ASSERT_FALSE(expected.isNull()) << "no reference at " << reference.toStdString();
        // Small tolerance for antialiasing and font rasterisation; a moved or recoloured element
        // changes far more than this.
        EXPECT_LT(differingShare(rendered, expected, 8), 0.002);
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
