#pragma once

#include "screen/OSTToolbarSettings.h"

#include <QQuickPaintedItem>

#include <functional>

namespace ostrel {

// The bar with a cancel and a done button that a Qt Quick picker shows above its wheel and a Qt
// Quick text field keeps as its accessory, titled and styled by its settings
// (OSTToolbarSettings): the default bar is light with dark titles, any other style black with
// white titles, translucent when asked. Cancel sits at the left end, done at the right; a click
// released on a title runs that button's block.
//
// Lives on the GUI thread; owned by its QObject parent (the input it belongs to).
class OSTQuickToolbar final : public QQuickPaintedItem {
    Q_OBJECT

public:
    using BarStyle = OSTToolbarSettings::BarStyle;

    explicit OSTQuickToolbar(const OSTToolbarSettings &settings, QQuickItem *parent = nullptr);

    void setCancelBlock(std::function<void()> block) { m_cancelBlock = std::move(block); }
    void setDoneBlock(std::function<void()> block) { m_doneBlock = std::move(block); }

    BarStyle barStyle() const { return m_settings.barStyle; }
    bool isTranslucent() const { return m_settings.translucent; }
    const QString &cancelText() const { return m_settings.cancelText; }
    const QString &doneText() const { return m_settings.acceptText; }
    // Where the two buttons lie in the bar's own coordinates.
    QRectF cancelButtonRect() const;
    QRectF doneButtonRect() const;
    // The bar's natural height.
    static qreal barHeight();

    // Each runs its block when one is set.
    void cancelTapped();
    void doneTapped();

    void paint(QPainter *painter) override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    qreal buttonWidth(const QString &title) const;
    QColor backgroundColor() const;

    const OSTToolbarSettings m_settings;
    std::function<void()> m_cancelBlock;
    std::function<void()> m_doneBlock;
};

} // namespace ostrel
