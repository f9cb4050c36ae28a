#pragma once

#include <ostrel/OSTPropertyConversions.h>

#include <QImage>
#include <QMargins>
#include <QWidget>

#include <optional>

namespace ostrel {

// Paints one image inside its rectangle: placed by a content mode (scaled to fill, fitted,
// filled, centred or pinned to an edge or corner), or, with cap insets, stretched as a nine-patch
// whose corners keep their size. Nothing is drawn outside the rectangle. Accessibility reads it
// as a graphic. The image is drawn once per size and ratio and kept (OSTPaintedLayerCache).
//
// Lives on the GUI thread; owned by its parent widget.
class OSTImageDisplay final : public QWidget {
    Q_OBJECT

public:
    explicit OSTImageDisplay(QWidget *parent = nullptr);

    const QImage &image() const { return m_image; }
    void setImage(const QImage &image);
    UIViewContentMode contentMode() const { return m_contentMode; }
    void setContentMode(UIViewContentMode mode);
    // Top, left, bottom, right, in points of the image. Insets that do not fit the image are
    // reduced until they do; negative ones count as 0.
    void setCapInsets(const std::optional<QMargins> &insets);
    const std::optional<QMargins> &capInsets() const { return m_capInsets; }

    // Where the image lands in `bounds` for a content mode (beyond `bounds` when it fills).
    static QRectF placement(const QSizeF &imageSize, const QRectF &bounds, UIViewContentMode mode);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QMargins fittedInsets() const;
    // Names everything paintImage draws but the size and ratio.
    QString layerKey() const;
    void paintImage(QPainter &painter) const;

    QImage m_image;
    UIViewContentMode m_contentMode = UIViewContentModeScaleAspectFill;
    std::optional<QMargins> m_capInsets;
};

} // namespace ostrel
