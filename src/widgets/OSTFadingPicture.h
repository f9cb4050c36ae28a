#pragma once

#include <QPixmap>
#include <QWidget>

namespace ostrel {

// A still picture of a widget, drawn at an animatable opacity in the widget's place. Fading a
// live widget needs an opacity effect, and Qt cannot draw the widget's own effects (the rounded
// clipping inside screens) through a second one; fading its picture needs none.
//
// Lives on the GUI thread; a child of the faded widget's parent (or a window of its own when the
// widget is one), owned by whoever started the fade.
class OSTFadingPicture final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(qreal opacity READ opacity WRITE setOpacity)

public:
    // Takes the picture of `widget` and lays it over the widget's place, at `opacity`.
    OSTFadingPicture(QWidget *widget, qreal opacity);

    qreal opacity() const { return m_opacity; }
    void setOpacity(qreal opacity);

protected:
    // Takes the mouse and the keys, so that nothing underneath gets them during the fade.
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    const QPixmap m_picture;
    qreal m_opacity;
};

} // namespace ostrel
