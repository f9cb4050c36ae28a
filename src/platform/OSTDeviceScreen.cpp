#include "platform/OSTDeviceScreen.h"

#include <QGuiApplication>
#include <QScreen>

namespace ostrel {

QRectF OSTDeviceScreen::fallbackBounds()
{
    return QRectF(0, 0, 375, 667);
}

QRectF OSTDeviceScreen::bounds()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return fallbackBounds();
    const QScreen *screen = QGuiApplication::primaryScreen();
    if (!screen)
        return fallbackBounds();
    const QRectF geometry = screen->geometry();
    if (geometry.isEmpty())
        return fallbackBounds();
    return geometry;
}

double OSTDeviceScreen::scale()
{
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance()))
        return 1.0;
    const QScreen *screen = QGuiApplication::primaryScreen();
    return screen ? screen->devicePixelRatio() : 1.0;
}

double OSTDeviceScreen::statusBarHeight()
{
    return 0.0;
}

} // namespace ostrel
