#pragma once

#include "paint/OSTSwitchPainter.h"

#include <QAbstractButton>

class QPropertyAnimation;

namespace ostrel {

// An on/off switch drawn by OSTSwitchPainter: a capsule track and a round thumb that slides
// across when the switch is toggled. Space, Enter and Return toggle it from the keyboard, and
// accessibility reads it as a checkable button.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTSwitchControl final : public QAbstractButton {
    Q_OBJECT
    Q_PROPERTY(qreal thumbPosition READ thumbPosition WRITE setThumbPosition)

public:
    enum class Animation { Animated, Immediate };

    explicit OSTSwitchControl(QWidget *parent = nullptr);

    // The size the switch takes whatever its element's box (a phone switch's 51 × 31 points).
    static QSize naturalSize() { return {51, 31}; }
    QSize sizeHint() const override { return naturalSize(); }

    void setOn(bool on, Animation animation);

    // Invalid colours keep the defaults: green track when on, light grey outline when off,
    // white thumb.
    void setOnTintColor(const QColor &color);
    void setTintColor(const QColor &color);
    void setThumbTintColor(const QColor &color);
    QColor onTintColor() const { return m_switchPainter.onTintColor(); }
    QColor tintColor() const { return m_switchPainter.tintColor(); }
    QColor thumbTintColor() const { return m_switchPainter.thumbTintColor(); }

    // 0 with the thumb at the off end, 1 at the on end.
    qreal thumbPosition() const { return m_thumbPosition; }
    void setThumbPosition(qreal position);

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void checkStateSet() override;
    void nextCheckState() override;
    bool hitButton(const QPoint &position) const override;

private:
    void slideThumb(Animation animation);
    QColor focusColor() const;

    QPropertyAnimation *const m_slide; // child
    OSTSwitchPainter m_switchPainter;
    qreal m_thumbPosition = 0;
};

} // namespace ostrel
