#include "PreviewApp.h"

#include "JsonLocator.h"
#include "ScreenChecker.h"

#include "experience/OSTExperienceManager.h"
#include "experience/OSTScreen.h"
#include "platform/OSTBundle.h"
#include "screen/OSTScreenVocabulary.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

void print(FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", qPrintable(line));
    std::fflush(stream);
}

} // namespace

PreviewApp::PreviewApp(PreviewOptions options, std::unique_ptr<ScreenRenderer> renderer)
    : m_options(std::move(options)), m_renderer(std::move(renderer))
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &PreviewApp::fileChanged);
}

PreviewApp::~PreviewApp() = default;

std::optional<int> PreviewApp::start()
{
    if (m_options.check)
        return checkFile();
    const bool staysOpen = m_options.watch || m_options.window;
    // Watched before the first render, so that an edit made as soon as the first image appears
    // is not missed.
    if (staysOpen)
        m_watcher.addPath(ScreenSource::load(m_options.file, m_options.screenKey).path);
    const bool rendered = renderOnce();
    if (!staysOpen)
        return rendered ? Success : Unusable;
    return std::nullopt;
}

int PreviewApp::checkFile() const
{
    const ScreenSource source = ScreenSource::load(m_options.file, m_options.screenKey);
    if (!source.error.isEmpty()) {
        print(stderr, source.error);
        return Unusable;
    }
    printProblems(source, false);
    const ScreenChecker checker(ostrel::OSTScreenVocabulary::schema(), QSizeF(m_options.size));
    return checker.check(source.screenText).isEmpty() ? Success : ProblemsFound;
}

void PreviewApp::printProblems(const ScreenSource &source, bool asWarnings) const
{
    const ScreenChecker checker(ostrel::OSTScreenVocabulary::schema(), QSizeF(m_options.size));
    const JsonLocator fileLocator(source.fileText);
    for (const ScreenChecker::Problem &problem : checker.check(source.screenText)) {
        // Parse errors of an experience's screen are errors of the file itself.
        const JsonLocator::Position position = problem.offset >= 0
            ? JsonLocator(source.screenText).positionOfOffset(problem.offset)
            : fileLocator.positionOf(source.pointerPrefix + problem.pointer);
        const QString pointer = source.pointerPrefix + problem.pointer;
        print(stderr, u"%1:%2:%3: %4%5: %6"_s.arg(source.path)
                          .arg(position.line)
                          .arg(position.column)
                          .arg(asWarnings ? u"warning: "_s : QString(), pointer.isEmpty() ? u"/"_s : pointer,
                               problem.message));
    }
}

bool PreviewApp::renderOnce()
{
    const ScreenSource source = ScreenSource::load(m_options.file, m_options.screenKey);
    if (!source.error.isEmpty()) {
        print(stderr, source.error);
        return false;
    }
    printProblems(source, true);
    const QString images = m_options.imagesFolder.isEmpty() ? source.imagesFolder : m_options.imagesFolder;
    if (!images.isEmpty())
        ostrel::OSTBundle::setMainBundlePath(images); // the image manager finds named images there
    const auto screen = std::make_shared<const ostrel::OSTScreen>(
        source.screenKey, QVariantMap{{u"json_data"_s, QString::fromUtf8(source.screenText)}},
        ostrel::OSTDocumentOrigin::Local);
    const auto substitute = [variables = m_options.variables](const QString &text) {
        return ostrel::OSTExperienceManager::replaceDynamicVariables(text, variables);
    };
    if (!m_renderer->build(screen, m_options.size, substitute)) {
        print(stderr, u"%1: the screen does not parse; nothing rendered"_s.arg(source.path));
        return false;
    }
    m_renderer->waitForImages();
    if (m_options.window) {
        m_renderer->show(m_options.size, u"ostrel-preview: %1"_s.arg(source.screenKey));
        return true;
    }
    const QImage image = m_renderer->image(m_options.ratio);
    if (!image.save(m_options.output, "PNG")) {
        print(stderr, u"cannot write %1"_s.arg(m_options.output));
        return false;
    }
    print(stdout, u"wrote %1 (%2x%3)"_s.arg(m_options.output).arg(image.width()).arg(image.height()));
    return true;
}

void PreviewApp::fileChanged()
{
    const QString path = ScreenSource::load(m_options.file, m_options.screenKey).path;
    // Editors that save by replacing the file end the watch; watch the new file.
    if (!m_watcher.files().contains(path) && QFileInfo::exists(path))
        m_watcher.addPath(path);
    renderOnce();
}
