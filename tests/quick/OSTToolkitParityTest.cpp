// Both toolkits draw a screen alike: every shipped and sample screen drawn by Qt Quick (through
// ostrel-preview --toolkit quick, a QGuiApplication of its own) against the reference the Qt Widgets
// toolkit draws pixel for pixel (tests/widgets/references). Glyph edges may differ; positions, sizes
// and colours may not: at most 3 % of the pixels may differ by more than 32 in a channel.

#include "support/OSTReferenceScreens.h"

#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace ostrel {
namespace {

constexpr int channelTolerance = 32;
constexpr double allowedShare = 0.03;

TEST(ToolkitParity, EveryScreenDrawnByQtQuickLooksAsTheWidgetsDrawIt)
{
#ifndef OSTREL_PREVIEW_PATH
    GTEST_SKIP() << "ostrel-preview is not built";
#else
    const QList<test::ReferenceScreen> screens = test::OSTReferenceScreens::all();
    ASSERT_GE(screens.size(), 16);
    for (const test::ReferenceScreen &screen : screens) {
        SCOPED_TRACE(screen.referenceName.toStdString());
        QTemporaryDir output;
        QProcess preview;
        preview.start(QString::fromUtf8(OSTREL_PREVIEW_PATH),
                      {screen.sourceFile, u"--screen"_s, screen.key, u"--toolkit"_s, u"quick"_s, u"--size"_s,
                       u"375x667"_s, u"--ratio"_s, u"2"_s, u"--var"_s, u"first_name=Ada"_s, u"--images"_s,
                       screen.imagesFolder, u"-o"_s, output.filePath(u"quick.png"_s)});
        ASSERT_TRUE(preview.waitForFinished(60000));
        ASSERT_EQ(preview.exitCode(), 0) << preview.readAllStandardError().toStdString();
        const QImage drawn = QImage(output.filePath(u"quick.png"_s)).convertToFormat(QImage::Format_ARGB32);
        const QImage reference =
            QImage(test::OSTReferenceScreens::referencePath(screen)).convertToFormat(QImage::Format_ARGB32);
        ASSERT_EQ(drawn.size(), reference.size());
        const double share = test::OSTReferenceScreens::differingShare(drawn, reference, channelTolerance);
        EXPECT_LE(share, allowedShare) << "differing share " << share;
        if (share > allowedShare && qEnvironmentVariableIsSet("OSTREL_KEEP_PARITY_PICTURES"))
            drawn.save(u"/tmp/parity-%1.png"_s.arg(screen.referenceName));
    }
#endif
}

} // namespace
} // namespace ostrel
