#pragma once

#include <QUrl>

#include <functional>

namespace ostrel {

// Opens addresses with the desktop's handler (QDesktopServices). A test, or a host that routes
// links itself, replaces the handler. Thread-safe.
class OSTURLOpener {
public:
    using Handler = std::function<bool(const QUrl &url)>;

    OSTURLOpener() = delete;

    // Whether the address was handed to a handler that accepted it.
    static bool openURL(const QUrl &url);
    // An empty handler restores the desktop's.
    static void setHandler(Handler handler);
};

} // namespace ostrel
