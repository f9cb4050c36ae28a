#include "QuickScreenRenderer.h"

#include "quick/OSTQuickLoadingOverlay.h"
#include "quick/OSTQuickScreen.h"

#include <QEventLoop>
#include <QQuickItemGrabResult>
#include <QQuickWindow>

using ostrel::OSTQuickScreen;

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
    waitForImagesOf(*m_screen);
}

QImage QuickScreenRenderer::image(qreal ratio)
{
    if (!m_window->isVisible())
        m_window->show();
    // The item's own grab keeps the transparent ground (a grab of the window is opaque).
    const QSharedPointer<QQuickItemGrabResult> grab = m_screen->grabToImage(m_window->size() * ratio);
    if (!grab)
        return {};
    QEventLoop loop;
    QObject::connect(grab.data(), &QQuickItemGrabResult::ready, &loop, &QEventLoop::quit);
    loop.exec();
    QImage picture = grab->image();
    picture.setDevicePixelRatio(ratio);
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
