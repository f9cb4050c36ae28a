#pragma once

#include <QUrl>

namespace ostrel {

// Who tells the SDK about the application's life cycle.
enum class OSTLifecycleSource {
    // The SDK follows Qt: the first turn of the event loop finishes launching, the application
    // state and aboutToQuit do the rest. On a desktop, losing the focus, being minimised or
    // hiding every window counts as entering the background; a QCoreApplication (no windows) is
    // always active.
    Automatic,
    // The host reports every step itself through Ostrel::applicationDidFinishLaunching() and
    // the other application… functions; Qt's own state is ignored.
    Host,
};

// The application's state as the host reports it.
enum class OSTApplicationState { Active, Inactive, Background };

// What the application was opened with.
struct OSTLaunchOptions {
    // The link (a universal link or a tracking link) that opened the application, if any.
    QUrl openedURL;
};

} // namespace ostrel
