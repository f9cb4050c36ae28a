#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QImage>
#include <QMargins>
#include <QRectF>
#include <QSize>
#include <QString>

#include <optional>

class QPainter;

namespace ostrel {

// Paints one image inside a box: placed by a content mode (scaled to fill, fitted, filled,
// centred or pinned to an edge or corner), or, with cap insets, stretched as a nine-patch whose
// corners keep their size. Nothing is drawn outside the box. The picture is drawn once per size
// and device pixel ratio and kept (OSTPaintedLayerCache).
//
// Coordinates are the box's own: it fills (0, 0, size). A value type; paints where the kept layers
// may be used (OSTPaintedLayerCache: the GUI thread, or a thread painting while it waits), and
// the nine-patch goes through a QPixmap, which off the GUI thread needs a platform with threaded
// pixmaps.
class OSTImagePainter {
public:
    const QImage &image() const { return m_image; }
    void setImage(const QImage &image) { m_image = image; }
    UIViewContentMode contentMode() const { return m_contentMode; }
    void setContentMode(UIViewContentMode mode) { m_contentMode = mode; }
    // Top, left, bottom, right, in points of the image. Insets that do not fit the image are
    // reduced until they do; negative ones count as 0.
    const std::optional<QMargins> &capInsets() const { return m_capInsets; }
    void setCapInsets(const std::optional<QMargins> &insets) { m_capInsets = insets; }

    // Where an image of `imageSize` lands in `bounds` for a content mode (beyond `bounds` when
    // it fills); empty for an empty image.
    static QRectF placement(const QSizeF &imageSize, const QRectF &bounds, UIViewContentMode mode);

    // Paints the image into a box of `size` at the painter's device pixel ratio, from a kept
    // layer when there is one. Nothing without an image.
    void paint(QPainter &painter, const QSize &size) const;

private:
    QMargins fittedInsets() const;
    // Names everything paintImage draws but the size and ratio.
    QString layerKey() const;
    void paintImage(QPainter &painter, const QSize &size) const;
    void paintNinePatch(QPainter &painter, const QRect &box) const;

    QImage m_image;
    UIViewContentMode m_contentMode = UIViewContentModeScaleAspectFill;
    std::optional<QMargins> m_capInsets;
};

} // namespace ostrel
