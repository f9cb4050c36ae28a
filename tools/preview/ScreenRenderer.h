#pragma once

#include <QImage>
#include <QList>
#include <QUrl>
#include <QSize>
#include <QString>

#include <functional>
#include <memory>

class QObject;

namespace ostrel {
class OSTScreen;
}

// One screen drawn by one of the SDK's toolkits, for the preview: built, given time for its images,
// then written to an image or shown in a window. GUI thread.
class ScreenRenderer {
public:
    using Substitution = std::function<QString(const QString &text)>;

    virtual ~ScreenRenderer() = default;

    // Draws `screen` laid out in `area` points, replacing what was drawn before; false when the
    // screen does not parse. Unresolved elements are drawn at the zero rectangle.
    virtual bool build(const std::shared_ptr<const ostrel::OSTScreen> &screen, QSize area,
                       const Substitution &substitution) = 0;
    // Lets images arrive (a bounded real-time wait), then prints a warning for each that failed.
    virtual void waitForImages() = 0;
    // The screen as painted at `ratio` device pixels per point.
    virtual QImage image(qreal ratio) = 0;
    // Shows the screen in a window of `size` points titled `title`, following the window's size.
    virtual void show(QSize size, const QString &title) = 0;

    // Images come from files or the service; a preview gives them this long to arrive.
    static constexpr int imageWaitMilliseconds = 10000;

protected:
    // Turns the event loop while `pending` holds, at most imageWaitMilliseconds.
    static void waitWhile(const std::function<bool()> &pending);
    // Prints that the image of the element owning `image` (its nearest named ancestor) did not load
    // from any of `addresses`.
    static void warnImageFailed(const QObject &image, const QList<QUrl> &addresses);
};
