#include "ScreenRenderer.h"

#include "model/OSTRemoteImage.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using ostrel::OSTRemoteImage;

namespace {

void warnImageFailed(const OSTRemoteImage &image)
{
    QStringList addresses;
    for (const QUrl &url : image.candidateURLs())
        addresses << url.toString();
    QString owner;
    for (const QObject *object = &image; object && owner.isEmpty(); object = object->parent())
        owner = object->objectName();
    std::fprintf(stderr, "%s\n",
                 qPrintable(u"warning: image of \"%1\" failed to load: %2"_s.arg(owner, addresses.join(u", "_s))));
    std::fflush(stderr);
}

} // namespace

void ScreenRenderer::waitForImagesOf(const QObject &screen)
{
    const auto images = screen.findChildren<OSTRemoteImage *>();
    const auto requiredLoading = [&images] {
        return std::any_of(images.begin(), images.end(),
                           [](const OSTRemoteImage *image) { return image->isRequired() && image->isLoading(); });
    };
    const QDeadlineTimer deadline(imageWaitMilliseconds);
    // Named images and failures arrive on the next turns of the event loop; downloads later.
    for (int turn = 0; turn < 3; ++turn)
        QCoreApplication::processEvents();
    while (requiredLoading() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    for (const OSTRemoteImage *image : images) {
        if (!image->candidateURLs().isEmpty() && !image->hasArrived())
            warnImageFailed(*image);
    }
}
