#include "ScreenRenderer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QObject>

#include <cstdio>

using namespace Qt::StringLiterals;

void ScreenRenderer::waitWhile(const std::function<bool()> &pending)
{
    const QDeadlineTimer deadline(imageWaitMilliseconds);
    // Named images and failures arrive on the next turns of the event loop; downloads later.
    for (int turn = 0; turn < 3; ++turn)
        QCoreApplication::processEvents();
    while (pending() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
}

void ScreenRenderer::warnImageFailed(const QObject &image, const QList<QUrl> &addresses)
{
    QStringList names;
    for (const QUrl &url : addresses)
        names << url.toString();
    QString owner;
    for (const QObject *object = &image; object && owner.isEmpty(); object = object->parent())
        owner = object->objectName();
    std::fprintf(stderr, "%s\n", qPrintable(u"warning: image of \"%1\" failed to load: %2"_s.arg(owner, names.join(u", "_s))));
    std::fflush(stderr);
}
