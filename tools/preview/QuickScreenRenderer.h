#pragma once

#include "ScreenRenderer.h"

#include <QPointer>

class QQuickWindow;

namespace ostrel {
class OSTQuickScreen;
}

// The screen drawn by the Qt Quick toolkit (OSTQuickScreen) in a QQuickWindow of its own, which
// also serves the pictures: a grab of the window at the ratio the whole window is scaled by (the
// picture is scaled to the requested ratio when the window's differs). GUI thread.
class QuickScreenRenderer final : public ScreenRenderer {
public:
    QuickScreenRenderer();
    ~QuickScreenRenderer() override;

    bool build(const std::shared_ptr<const ostrel::OSTScreen> &screen, QSize area,
               const Substitution &substitution) override;
    void waitForImages() override;
    QImage image(qreal ratio) override;
    void show(QSize size, const QString &title) override;

private:
    std::unique_ptr<QQuickWindow> m_window;
    QPointer<ostrel::OSTQuickScreen> m_screen; // child item of the window's content
    bool m_shown = false;
};
