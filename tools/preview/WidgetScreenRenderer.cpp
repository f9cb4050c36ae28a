#include "WidgetScreenRenderer.h"

#include "widgets/OSTImageView.h"
#include "widgets/OSTScreenView.h"

#include <QWidget>

#include <algorithm>

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
    const OSTScreenView &view = *m_view;
    waitWhile([&view] {
        const QList<OSTImageView *> images = imageViewsOf(view);
        const bool loading = std::any_of(images.begin(), images.end(), [](const OSTImageView *image) {
            return !image->candidateURLs().isEmpty() && image->image().isNull() && image->isLoadingRequiredImage();
        });
        return loading || !view.isFullyLoaded();
    });
    for (const OSTImageView *image : imageViewsOf(view)) {
        if (!image->candidateURLs().isEmpty() && image->image().isNull())
            warnImageFailed(*image, image->candidateURLs());
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
