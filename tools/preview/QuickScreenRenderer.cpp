#include "QuickScreenRenderer.h"

#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickScreen.h"

#include <QQuickWindow>

#include <algorithm>

using ostrel::OSTQuickImage;
using ostrel::OSTQuickScreen;

namespace {

QList<OSTQuickImage *> imagesOf(const OSTQuickScreen &screen)
{
    return screen.findChildren<OSTQuickImage *>();
}

} // namespace

QuickScreenRenderer::QuickScreenRenderer() : m_window(std::make_unique<QQuickWindow>())
{
    m_window->setColor(Qt::transparent);
}

QuickScreenRenderer::~QuickScreenRenderer() = default;

bool QuickScreenRenderer::build(const std::shared_ptr<const ostrel::OSTScreen> &screen, QSize area,
                                const Substitution &substitution)
{
    OSTQuickScreen::Environment environment;
    environment.area = QSizeF(area);
    environment.substitution = substitution;
    OSTQuickScreen *built = OSTQuickScreen::screenWithScreen(
        screen, environment, OSTQuickScreen::UnresolvedLayout::ShowResolved, m_window->contentItem());
    if (!built)
        return false;
    delete m_screen.data();
    m_screen = built;
    if (!m_shown)
        m_window->resize(area);
    m_screen->setSize(m_window->size());
    QObject::connect(m_window.get(), &QWindow::widthChanged, built, [built, window = m_window.get()] {
        built->setSize(window->size());
    });
    QObject::connect(m_window.get(), &QWindow::heightChanged, built, [built, window = m_window.get()] {
        built->setSize(window->size());
    });
    return true;
}

void QuickScreenRenderer::waitForImages()
{
    const OSTQuickScreen &screen = *m_screen;
    waitWhile([&screen] {
        const QList<OSTQuickImage *> images = imagesOf(screen);
        return std::any_of(images.begin(), images.end(), [](const OSTQuickImage *image) {
            return !image->candidateURLs().isEmpty() && image->image().isNull() && image->isLoadingRequiredImage();
        });
    });
    for (const OSTQuickImage *image : imagesOf(screen)) {
        if (!image->candidateURLs().isEmpty() && image->image().isNull())
            warnImageFailed(*image, image->candidateURLs());
    }
}

QImage QuickScreenRenderer::image(qreal ratio)
{
    if (!m_window->isVisible())
        m_window->show();
    QImage picture = m_window->grabWindow();
    if (!qFuzzyCompare(picture.devicePixelRatio(), ratio)) {
        picture = picture.scaled(m_window->size() * ratio, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        picture.setDevicePixelRatio(ratio);
    }
    return picture;
}

void QuickScreenRenderer::show(QSize size, const QString &title)
{
    m_window->setTitle(title);
    if (!m_shown) {
        m_window->resize(size);
        m_window->setColor(Qt::white);
        m_window->show();
        m_shown = true;
    }
}
