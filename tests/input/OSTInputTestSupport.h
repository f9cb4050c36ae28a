#pragma once

// A window to hold inputs under keyboard focus, as a screen holds them.

#include <QApplication>
#include <QTest>
#include <QWidget>

namespace ostrel::test {

// Shows and activates a top-level window for the inputs the test creates in it; the inputs'
// focus then follows the keyboard as it does on a screen.
class InputWindow : public QWidget {
public:
    InputWindow()
    {
        resize(400, 600);
        show();
        activateWindow();
        // Returns as soon as the offscreen platform reports the window active.
        [[maybe_unused]] const bool active = QTest::qWaitForWindowActive(this);
    }
};

// Shows a widget made inside an already visible window (Qt leaves such children hidden).
template <typename Widget>
Widget *shown(Widget *widget)
{
    widget->show();
    return widget;
}

} // namespace ostrel::test
