#pragma once

#include "screen/OSTToolbarSettings.h"

#include <QToolBar>

#include <functional>

class QAction;

namespace ostrel {

// The bar with a cancel and a done button that pickers show above their wheel and text fields
// keep as their accessory, titled and styled by its settings (OSTToolbarSettings).
//
// Lives on the GUI thread; owned by its parent widget.
class OSTToolbar final : public QToolBar {
    Q_OBJECT

public:
    using BarStyle = OSTToolbarSettings::BarStyle;

    explicit OSTToolbar(const OSTToolbarSettings &settings, QWidget *parent = nullptr);

    void setCancelBlock(std::function<void()> block) { m_cancelBlock = std::move(block); }
    void setDoneBlock(std::function<void()> block) { m_doneBlock = std::move(block); }

    BarStyle barStyle() const { return m_barStyle; }
    bool isTranslucent() const { return m_translucent; }
    QAction *cancelAction() const { return m_cancelAction; }
    QAction *doneAction() const { return m_doneAction; }

    // Each runs its block when one is set.
    void cancelTapped();
    void doneTapped();

private:
    void applyBarStyle();

    QAction *m_cancelAction = nullptr; // owned by the bar
    QAction *m_doneAction = nullptr;
    BarStyle m_barStyle = BarStyle::Default;
    bool m_translucent = false;
    std::function<void()> m_cancelBlock;
    std::function<void()> m_doneBlock;
};

} // namespace ostrel
