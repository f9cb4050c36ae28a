#include "WidgetScreenRenderer.h"

#include "widgets/OSTImageView.h"
#include "widgets/OSTScreenView.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QWidget>

#include <cstdio>

using namespace Qt::StringLiterals;
using ostrel::OSTImageView;
using ostrel::OSTScreenView;

namespace {

QList<OSTImageView *> imageViewsOf(const OSTScreenView &view)
{
    return view.contentView()->findChildren<OSTImageView *>();
}

} // namespace

WidgetScreenRenderer::WidgetScreenRenderer() = default;

WidgetScreenRenderer::~WidgetScreenRenderer()
{
    if (!m_window)
        delete m_view.data();
}

bool WidgetScreenRenderer::build(const std::shared_ptr<const ostrel::OSTScreen> &screen, QSize area,
                                 const Substitution &substitution)
{
    OSTScreenView *view = OSTScreenView::create(screen, QSizeF(area), substitution,
                                                OSTScreenView::UnresolvedLayout::ShowResolved, m_window.get());
    if (!view)
        return false;
    delete m_view.data();
    m_view = view;
    return true;
}

void WidgetScreenRenderer::waitForImages()
{
    OSTScreenView &view = *m_view;
    const QDeadlineTimer deadline(imageWaitMilliseconds);
    const auto pending = [&view] {
        for (const OSTImageView *image : imageViewsOf(view)) {
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

    for (const OSTImageView *image : imageViewsOf(view)) {
        if (image->candidateURLs().isEmpty() || !image->image().isNull())
            continue;
        QStringList addresses;
        for (const QUrl &url : image->candidateURLs())
            addresses << url.toString();
        QString owner;
        for (const QObject *object = image; object && owner.isEmpty(); object = object->parent())
            owner = object->objectName();
        std::fprintf(stderr, "%s\n",
                     qPrintable(u"warning: image of \"%1\" failed to load: %2"_s.arg(owner, addresses.join(u", "_s))));
    }
}

QImage WidgetScreenRenderer::image(qreal ratio)
{
    return m_view->renderImage(ratio);
}

void WidgetScreenRenderer::show(QSize size, const QString &title)
{
    if (!m_window) {
        m_window = std::make_unique<QWidget>();
        m_view->setParent(m_window.get());
    }
    m_window->setWindowTitle(title);
    m_window->resize(size);
    m_view->resize(m_window->size());
    m_view->show();
    m_window->show();
}
