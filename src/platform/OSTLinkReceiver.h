#pragma once

#include <QObject>
#include <QUrl>

#include <functional>

namespace ostrel {

// The object QDesktopServices hands http(s) addresses to once OSTURLOpener receives links
// (QDesktopServices calls a slot by name). Owned by OSTURLOpener; GUI thread.
class OSTLinkReceiver : public QObject {
    Q_OBJECT

public:
    // Answers whether it took the link.
    std::function<bool(const QUrl &url)> receiver;
    // Where a declined link goes.
    std::function<void(const QUrl &url)> fallback;

public slots:
    void openLink(const QUrl &url);
};

} // namespace ostrel
