#pragma once

#include "paint/OSTImagePainter.h"

#include <QWidget>

namespace ostrel {

// Shows one image inside its rectangle as OSTImagePainter paints it: placed by a content mode,
// or, with cap insets, stretched as a nine-patch whose corners keep their size. Accessibility
// reads it as a graphic.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTImageDisplay final : public QWidget {
    Q_OBJECT

public:
    explicit OSTImageDisplay(QWidget *parent = nullptr);

    const QImage &image() const { return m_imagePainter.image(); }
    void setImage(const QImage &image);
    UIViewContentMode contentMode() const { return m_imagePainter.contentMode(); }
    void setContentMode(UIViewContentMode mode);
    // Top, left, bottom, right, in points of the image (see OSTImagePainter).
    void setCapInsets(const std::optional<QMargins> &insets);
    const std::optional<QMargins> &capInsets() const { return m_imagePainter.capInsets(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    OSTImagePainter m_imagePainter;
};

} // namespace ostrel
