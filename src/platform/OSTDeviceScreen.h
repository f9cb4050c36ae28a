#pragma once

#include <QRectF>

namespace ostrel {

// The device's screen as the Parts see it (UIScreen main screen, the status bar): the primary
// screen of the Qt GUI application. Without a GUI application or a screen (a console program,
// a test without a platform plugin) the values are those of a 375 by 667 point phone screen.
class OSTDeviceScreen {
public:
    OSTDeviceScreen() = delete;

    // The fallback bounds: (0, 0, 375, 667).
    static QRectF fallbackBounds();

    // The primary screen's geometry in device-independent pixels, origin as reported, in the
    // orientation the screen has; the fallback without a screen.
    static QRectF bounds();

    // Device pixels per device-independent pixel of the primary screen; 1 without a screen.
    static double scale();

    // The height of the system status bar above the application's content. Desktop windows
    // have none, so 0.
    static double statusBarHeight();
};

} // namespace ostrel
