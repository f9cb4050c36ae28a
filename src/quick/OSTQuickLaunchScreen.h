#pragma once

#include <QImage>
#include <QQuickPaintedItem>

namespace ostrel {

// The host's launch screen as Qt Quick shows it while an experience asked for during start-up is
// being built: the main bundle's launch image for the covered area, over black (a Qt Designer
// launch form needs Qt Widgets, so a Qt Quick host gets its launch image or black).
//
// Lives on the GUI thread; owned by its parent item.
class OSTQuickLaunchScreen final : public QQuickPaintedItem {
    Q_OBJECT

public:
    // The launch image for an area of `area` points at `devicePixelRatio`.
    OSTQuickLaunchScreen(QSizeF area, double devicePixelRatio, QQuickItem *parent = nullptr);

    void paint(QPainter *painter) override;

private:
    QImage m_image;
};

} // namespace ostrel
