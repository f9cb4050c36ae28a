#pragma once

// A window to hold inputs under keyboard focus, as a screen holds them, and the descriptions the
// inputs are built from.

#include "screen/OSTButtonDescription.h"
#include "screen/OSTPickerDescription.h"
#include "screen/OSTTextFieldDescription.h"
#include "support/OSTTestSupport.h"

#include <QApplication>
#include <QString>
#include <QTest>
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

// The descriptions of elements `key` with the properties of a JSON text, as a screen document
// reads them.
inline std::shared_ptr<const OSTButtonDescription> buttonOf(const char *json, const QString &key)
{
    return std::make_shared<const OSTButtonDescription>(key, jsonObject(json));
}

inline std::shared_ptr<const OSTPickerDescription> pickerOf(const char *json, const QString &key)
{
    return std::make_shared<const OSTPickerDescription>(key, jsonObject(json));
}

inline std::shared_ptr<const OSTTextFieldDescription> textFieldOf(const char *json, const QString &key)
{
    return std::make_shared<const OSTTextFieldDescription>(key, jsonObject(json));
}

} // namespace ostrel::test
