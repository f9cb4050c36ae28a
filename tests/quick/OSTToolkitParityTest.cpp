// Both toolkits draw a screen alike: every shipped and sample screen drawn by ostrel-preview with
// each toolkit (Qt Quick in a QGuiApplication of its own), with the same images and variables.
// Glyph edges may differ; positions, sizes and colours may not: at most 3 % of the pixels may differ
// by more than 32 in a channel.

#include "support/OSTReferenceScreens.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstdio>
#include <tuple>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

constexpr int channelTolerance = 32;
constexpr double allowedShare = 0.03;

#ifdef OSTREL_PREVIEW_PATH
// The screen as ostrel-preview draws it with `toolkit` at 375 x 667, ratio 2; null on failure.
QImage drawnBy(const QString &toolkit, const test::ReferenceScreen &screen)
{
    QTemporaryDir output;
    QProcess preview;
    preview.start(QString::fromUtf8(OSTREL_PREVIEW_PATH),
                  {screen.sourceFile, u"--screen"_s, screen.key, u"--toolkit"_s, toolkit, u"--size"_s, u"375x667"_s,
                   u"--ratio"_s, u"2"_s, u"--var"_s, u"first_name=Ada"_s, u"--images"_s, screen.imagesFolder,
                   u"-o"_s, output.filePath(u"screen.png"_s)});
    if (!preview.waitForFinished(60000) || preview.exitCode() != 0) {
        ADD_FAILURE() << toolkit.toStdString() << ": " << preview.readAllStandardError().toStdString();
        return {};
    }
    return QImage(output.filePath(u"screen.png"_s)).convertToFormat(QImage::Format_ARGB32);
}
#endif

TEST(ToolkitParity, EveryScreenDrawnByQtQuickLooksAsTheWidgetsDrawIt)
{
#ifndef OSTREL_PREVIEW_PATH
    GTEST_SKIP() << "ostrel-preview is not built";
#else
    const QList<test::ReferenceScreen> screens = test::OSTReferenceScreens::all();
    ASSERT_GE(screens.size(), 16);
    double worstShare = 0;
    QString worstScreen;
    for (const test::ReferenceScreen &screen : screens) {
        SCOPED_TRACE(screen.referenceName.toStdString());
        const QImage widgets = drawnBy(u"widgets"_s, screen);
        const QImage quick = drawnBy(u"quick"_s, screen);
        ASSERT_EQ(widgets.size(), QSize(750, 1334));
        ASSERT_EQ(quick.size(), widgets.size());
        const double share = test::OSTReferenceScreens::differingShare(quick, widgets, channelTolerance);
        EXPECT_LE(share, allowedShare) << "differing share " << share;
        if (share >= worstShare)
            std::tie(worstShare, worstScreen) = std::pair(share, screen.referenceName);
    }
    std::printf("the most different screen: %s, %.2f %% of its pixels\n", qPrintable(worstScreen), worstShare * 100);
#endif
}

} // namespace
} // namespace ostrel
