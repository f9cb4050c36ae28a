#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <functional>

class QPainter;

namespace ostrel {

// Pictures that element views paint again and again (a scaled image in its box, a rounded
// clipping mask, a border, a switch at rest) kept ready to draw: premultiplied ARGB32 at the
// device pixel ratio they are shown at, so a repaint is a plain copy of pixels. Qt's raster
// engine hands large smooth scalings and antialiased fills to a thread pool; on a small device
// that hand-over costs more than the work, while a same-format, same-scale copy stays on the
// painting thread.
//
// Shared by every view of the process: views of the same size showing the same picture (the
// buttons of a row, a screen built again) paint it once. The least recently used layers go
// first once the layers together exceed a few megabytes.
//
// Not guarded against two threads at once: used on the GUI thread, or on a thread that paints
// while the GUI thread waits (a Qt Quick painted item's paint()).
class OSTPaintedLayerCache final {
public:
    using Painting = std::function<void(QPainter &painter)>;

    OSTPaintedLayerCache() = delete;

    // The layer named `key`: `size` points at `ratio` device pixels per point, transparent but
    // for what `paint` draws (in points, from the top left). `paint` runs only when the layer is
    // not kept; `key` must therefore name everything `paint` depends on. An empty size gives a
    // null image.
    static QImage layer(const QString &key, const QSize &size, qreal ratio, const Painting &paint);

    // Draws the layer named `key` of `size` points at the painter's origin, painting it first
    // when it is not kept. A layer larger than the whole budget is not worth keeping: `paint`
    // then draws straight onto `painter`.
    static void draw(QPainter &painter, const QString &key, const QSize &size, const Painting &paint);

    // The device pixel ratio `painter` paints at, also through a redirection (1 without a device).
    static qreal devicePixelRatio(const QPainter &painter);

    // Layers kept now, and the bytes they take.
    static qsizetype count();
    static qsizetype bytes();
    static void clear();
};

} // namespace ostrel
