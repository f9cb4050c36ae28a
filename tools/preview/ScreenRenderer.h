#pragma once

#include <QImage>
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
    // What waitForImages does for either toolkit: turns the event loop while a required image of
    // `screen` is loading, at most imageWaitMilliseconds, then warns of every image that has not
    // arrived, named by its element (the nearest named ancestor).
    static void waitForImagesOf(const QObject &screen);
};
