#include "platform/OSTLinkReceiver.h"

namespace ostrel {

void OSTLinkReceiver::openLink(const QUrl &url)
{
    if (receiver && receiver(url))
        return;
    if (fallback)
        fallback(url);
}

} // namespace ostrel
