#pragma once

#include <QUrl>

#include <functional>

namespace ostrel {

// Where the SDK opens addresses (an experience's "open URL" action, the deep link of a universal
// link) and where links opened inside the host process reach it.
//
// Opening goes to the desktop (QDesktopServices::openUrl) unless a handler replaces it, as tests
// do. Receiving: once a link receiver is set, every http(s) address the host process opens
// through QDesktopServices comes to the receiver first; one it declines goes on to the desktop.
// The SDK's own openURL() always goes to the desktop (or the handler), never back to the
// receiver. GUI thread.
class OSTURLOpener {
public:
    using Handler = std::function<bool(const QUrl &url)>;

    OSTURLOpener() = delete;

    // Returns whether the address was handed on successfully.
    static bool openURL(const QUrl &url);
    // Replaces the desktop as the place where openURL() sends addresses; an empty handler
    // restores the desktop.
    static void setHandler(Handler handler);

    // `receiver` answers whether it took the link. An empty receiver stops receiving.
    static void setLinkReceiver(Handler receiver);
};

} // namespace ostrel
