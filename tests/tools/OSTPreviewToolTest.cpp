// ostrel-preview as an author runs it: --check with its pointers, lines and columns, the exit
// statuses, and --watch rendering again after an edit.

#include "support/OSTTestSupport.h"

#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

// The tool is built with the tools; without them there is nothing to run.
#ifdef OSTREL_PREVIEW_PATH

namespace {

const QString previewPath = QString::fromUtf8(OSTREL_PREVIEW_PATH);

struct PreviewRun {
    int exitCode = -1;
    QString standardError;
};

PreviewRun runPreview(const QStringList &arguments)
{
    QProcess process;
    process.start(previewPath, arguments);
    if (!process.waitForFinished(60000))
        return {};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
}

QString writeScreen(const QTemporaryDir &folder, const QString &name, const QByteArray &text)
{
    const QString path = folder.filePath(name);
    ostrel::test::writeFile(path, text);
    return path;
}

class PreviewTool : public ::testing::Test {
protected:
    QTemporaryDir m_folder;
};

TEST_F(PreviewTool, CheckNamesEachProblemWithItsPointerLineAndColumn)
{
    const QString path = writeScreen(m_folder, u"screen.json"_s,
                                     "{\n"
                                     "  \"labels\": {\n"
                                     "    \"title\": {\"x\": 10, \"y\": \"20\", \"colour\": \"#FFF\"},\n"
                                     "    \"body\": {\"y\": \"{missing.y} + 4\", \"width\": \"{body.height}\", \"height\": \"{body.width}\"}\n"
                                     "  },\n"
                                     "  \"groups\": {\"g\": {\"elements\": [\"title\", \"nobody\"]}}\n"
                                     "}\n");
    const PreviewRun run = runPreview({u"--check"_s, path});
    EXPECT_EQ(run.exitCode, 1);
    const QStringList expected = {
        path + u":3:20: /labels/title/x: wrong type: number where the screen reads string"_s,
        path + u":3:45: /labels/title/colour: unknown key \"colour\""_s,
        path + u":4:19: /labels/body/y: refers to element \"missing\", which does not exist"_s,
        path + u":6:42: /groups/g/elements/1: group member \"nobody\" does not exist"_s,
        path + u":4:47: /labels/body/width: never resolves: width = \"{body.height}\""_s,
    };
    for (const QString &line : expected)
        EXPECT_TRUE(run.standardError.contains(line)) << line.toStdString() << "\nin:\n"
                                                      << run.standardError.toStdString();

    // Keys without a desktop meaning and the picture chooser's menu titles are accepted.
    const QString clean = writeScreen(m_folder, u"clean.json"_s, R"({"labels": {"t": {"text": "hi", "x": "1"}},
        "inputs": {"name": {"keyboardAppearance": "dark", "returnKeyType": "next", "spellCheckingType": "no"}},
        "buttons": {"avatar": {"buttonType": "imageUpload", "states": {"normal": {}},
                               "imageSelector": {"cameraText": "Camera", "photosText": "Pick a file", "cancelText": "No"}}}})");
    const PreviewRun cleanRun = runPreview({u"--check"_s, clean});
    EXPECT_EQ(cleanRun.exitCode, 0) << cleanRun.standardError.toStdString();
    const QString broken = writeScreen(m_folder, u"broken.json"_s, "{\n  \"labels\": {,\n}");
    const PreviewRun parse = runPreview({u"--check"_s, broken});
    EXPECT_EQ(parse.exitCode, 1);
    EXPECT_TRUE(parse.standardError.contains(broken + u":2:15: /: the text does not parse"_s)) << parse.standardError.toStdString();
}

TEST_F(PreviewTool, RenderingFailsOnlyWhenTheScreenDoesNotParse)
{
    const QString broken = writeScreen(m_folder, u"broken.json"_s, "[1, 2");
    EXPECT_EQ(runPreview({broken, u"-o"_s, m_folder.filePath(u"a.png"_s)}).exitCode, 2);
    EXPECT_EQ(runPreview({m_folder.filePath(u"absent.json"_s)}).exitCode, 2);
    EXPECT_EQ(runPreview({broken, u"--size"_s, u"0x9"_s}).exitCode, 2);

    // A stuck formula and a missing image are warnings; the rest still renders.
    const QString stuck = writeScreen(m_folder, u"stuck.json"_s,
                                      R"({"backgroundColor": "#FF0000",
                                          "shapes": {"a": {"width": "{a.height}", "height": "{a.width}"}},
                                          "images": {"i": {"image": "nowhere.png", "width": "10", "height": "10"}}})");
    const QString output = m_folder.filePath(u"stuck.png"_s);
    const PreviewRun run = runPreview({stuck, u"--size"_s, u"20x30"_s, u"--ratio"_s, u"1"_s, u"-o"_s, output});
    EXPECT_EQ(run.exitCode, 0) << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(u"warning: /shapes/a/width: never resolves"_s)) << run.standardError.toStdString();
    EXPECT_TRUE(run.standardError.contains(u"warning: image of \"i\" failed to load: nowhere.png"_s))
        << run.standardError.toStdString();
    const QImage image(output);
    ASSERT_EQ(image.size(), QSize(20, 30));
    EXPECT_EQ(image.pixelColor(10, 15), QColor(Qt::red));
}

TEST_F(PreviewTool, WatchRendersAgainAfterAnEdit)
{
    const QString path = writeScreen(m_folder, u"screen.json"_s, R"({"backgroundColor": "#FF0000"})");
    const QString output = m_folder.filePath(u"screen.png"_s);
    QProcess preview;
    preview.start(previewPath, {path, u"--watch"_s, u"--size"_s, u"10x10"_s, u"--ratio"_s, u"1"_s, u"-o"_s, output});
    const auto colourOfOutput = [&] {
        const QImage image(output);
        return image.isNull() ? QColor() : image.pixelColor(5, 5);
    };
    // Real time only as a safety net: the preview is another process.
    ASSERT_TRUE(ostrel::test::waitUntil([&] { return colourOfOutput() == QColor(Qt::red); }, 30000));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(R"({"backgroundColor": "#0000FF"})");
    file.close();
    EXPECT_TRUE(ostrel::test::waitUntil([&] { return colourOfOutput() == QColor(Qt::blue); }, 30000));
    preview.kill();
    preview.waitForFinished();
}

} // namespace

#endif // OSTREL_PREVIEW_PATH
