#pragma once

#include <QUrl>

#include <functional>

namespace ostrel {

// Where the SDK opens addresses (an experience's "open URL" action, the deep link of a universal
// link, a social log-in page) and where links opened inside the host process reach it.
//
// Opening goes to the desktop (QDesktopServices::openUrl) unless a handler replaces it, as tests
// and hosts that route links themselves do; thread-safe. Receiving (GUI thread): once a link
// receiver is set, every http(s) address the host process opens through QDesktopServices comes
// to the receiver first; one it declines goes on to the desktop. The SDK's own openURL() never
// comes back to the receiver.
class OSTURLOpener {
public:
    using Handler = std::function<bool(const QUrl &url)>;

    OSTURLOpener() = delete;

    // Whether the address was handed to a handler that accepted it.
    static bool openURL(const QUrl &url);
    // An empty handler restores the desktop's.
    static void setHandler(Handler handler);

    // `receiver` answers whether it took the link. An empty receiver stops receiving.
    static void setLinkReceiver(Handler receiver);
};

} // namespace ostrel
