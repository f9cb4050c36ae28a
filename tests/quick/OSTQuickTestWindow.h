#pragma once

// A Qt Quick window to hold the items a test creates, shown and active on the offscreen platform
// and rendered by the software scene graph, so that grabs work without a GPU.

#include <QQuickItem>
#include <QQuickWindow>
#include <QSGRendererInterface>
#include <QTest>

namespace ostrel::test {

// Chooses the software scene graph; a base of the window, so that it runs before the first
// window is made (offscreen has no GPU).
struct SoftwareRendering {
    SoftwareRendering()
    {
        static const bool chosen = [] {
            QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
            return true;
        }();
        Q_UNUSED(chosen)
    }
};

class QuickTestWindow : private SoftwareRendering, public QQuickWindow {
public:
    QuickTestWindow()
    {
        resize(400, 600);
        show();
        requestActivate();
        // Returns as soon as the offscreen platform reports the window active.
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(this);
    }

    QQuickItem *root() const { return contentItem(); }

    // Types `text` (Latin-1) key by key into the item with the active focus.
    void type(const QString &text)
    {
        for (const QChar character : text)
            QTest::keyClick(this, character.toLatin1());
    }

    // Clicks at `position` of `item`.
    void click(const QQuickItem &item, QPointF position)
    {
        QTest::mouseClick(this, Qt::LeftButton, {}, item.mapToScene(position).toPoint());
    }
};

} // namespace ostrel::test
