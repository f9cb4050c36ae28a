#include "WidgetScreenRenderer.h"

#include "widgets/OSTScreenView.h"

#include <QWidget>

using ostrel::OSTScreenView;

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
    waitForImagesOf(*m_view);
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
