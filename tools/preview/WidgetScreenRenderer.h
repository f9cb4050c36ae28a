#pragma once

#include "ScreenRenderer.h"

#include <QPointer>

class QWidget;

namespace ostrel {
class OSTScreenView;
}

// The screen drawn by the Qt Widgets toolkit (OSTScreenView). Owns the view, or the window that
// holds it once shown. GUI thread.
class WidgetScreenRenderer final : public ScreenRenderer {
public:
    WidgetScreenRenderer();
    ~WidgetScreenRenderer() override;

    bool build(const std::shared_ptr<const ostrel::OSTScreen> &screen, QSize area,
               const Substitution &substitution) override;
    void waitForImages() override;
    QImage image(qreal ratio) override;
    void show(QSize size, const QString &title) override;

private:
    std::unique_ptr<QWidget> m_window;      // once shown
    QPointer<ostrel::OSTScreenView> m_view; // child of m_window once shown, else owned here
};
