#include "PreviewApp.h"

#include "JsonLocator.h"
#include "ScreenChecker.h"

#include "experience/OSTExperienceManager.h"
#include "experience/OSTScreen.h"
#include "platform/OSTBundle.h"
#include "screen/OSTScreenVocabulary.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTImageView.h"
#include "widgets/OSTScreenView.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QWidget>

#include <cstdio>

using namespace Qt::StringLiterals;
using ostrel::OSTScreenView;

namespace {

// Images come from files or the service; a preview gives them this long (real time) to arrive.
constexpr int imageWaitMilliseconds = 10000;

void print(FILE *stream, const QString &line)
{
    std::fprintf(stream, "%s\n", qPrintable(line));
    std::fflush(stream);
}

QList<ostrel::OSTImageView *> imageViewsOf(const OSTScreenView &view)
{
    return view.contentView()->findChildren<ostrel::OSTImageView *>();
}

} // namespace

PreviewApp::PreviewApp(PreviewOptions options) : m_options(std::move(options))
{
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &PreviewApp::fileChanged);
}

PreviewApp::~PreviewApp()
{
    if (!m_window)
        delete m_view.data();
}

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
    QWidget *parent = m_window.get();
    OSTScreenView *view = OSTScreenView::create(screen, QSizeF(m_options.size), substitute,
                                                OSTScreenView::UnresolvedLayout::ShowResolved, parent);
    if (!view) {
        print(stderr, u"%1: the screen does not parse; nothing rendered"_s.arg(source.path));
        return false;
    }
    waitForImages(*view);
    reportImages(*view);
    if (m_options.window) {
        if (!m_window) {
            m_window = std::make_unique<QWidget>();
            m_window->setWindowTitle(u"ostrel-preview: %1"_s.arg(source.screenKey));
            view->setParent(m_window.get());
        }
        delete m_view.data();
        m_view = view;
        m_window->resize(m_options.size);
        view->resize(m_window->size());
        view->show();
        m_window->show();
        return true;
    }
    delete m_view.data();
    m_view = view;
    const QImage image = view->renderImage(m_options.ratio);
    if (!image.save(m_options.output, "PNG")) {
        print(stderr, u"cannot write %1"_s.arg(m_options.output));
        return false;
    }
    print(stdout, u"wrote %1 (%2x%3)"_s.arg(m_options.output).arg(image.width()).arg(image.height()));
    return true;
}

void PreviewApp::waitForImages(OSTScreenView &view) const
{
    const QDeadlineTimer deadline(imageWaitMilliseconds);
    const auto pending = [&view] {
        for (const ostrel::OSTImageView *image : imageViewsOf(view)) {
            if (!image->candidateURLs().isEmpty() && image->image().isNull() && image->isLoadingRequiredImage())
                return true;
        }
        return !view.isFullyLoaded();
    };
    // Named images and failures arrive on the next turns of the event loop; downloads later.
    for (int turn = 0; turn < 3; ++turn)
        QCoreApplication::processEvents();
    while (pending() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

void PreviewApp::reportImages(const OSTScreenView &view) const
{
    for (const ostrel::OSTImageView *image : imageViewsOf(view)) {
        if (image->candidateURLs().isEmpty() || !image->image().isNull())
            continue;
        QStringList addresses;
        for (const QUrl &url : image->candidateURLs())
            addresses << url.toString();
        QString owner;
        for (const QObject *object = image; object && owner.isEmpty(); object = object->parent())
            owner = object->objectName();
        print(stderr, u"warning: image of \"%1\" failed to load: %2"_s.arg(owner, addresses.join(u", "_s)));
    }
}

void PreviewApp::fileChanged()
{
    const QString path = ScreenSource::load(m_options.file, m_options.screenKey).path;
    // Editors that save by replacing the file end the watch; watch the new file.
    if (!m_watcher.files().contains(path) && QFileInfo::exists(path))
        m_watcher.addPath(path);
    renderOnce();
}
