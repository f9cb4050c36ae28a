#pragma once

// A window to hold inputs under keyboard focus, as a screen holds them, and the descriptions the
// inputs are built from.

#include "support/OSTTestSupport.h"

#include <QApplication>
#include <QString>
#include <QTest>
#include <QVariantMap>
#include <QWidget>

#include <memory>

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

// The description of the element `key` with `properties`, as a screen document reads it.
template <typename Description>
std::shared_ptr<const Description> describe(const QVariantMap &properties, const QString &key)
{
    return std::make_shared<const Description>(key, properties);
}

// The same with the properties as JSON text.
template <typename Description>
std::shared_ptr<const Description> describe(const char *json, const QString &key)
{
    return describe<Description>(jsonObject(json), key);
}

} // namespace ostrel::test
