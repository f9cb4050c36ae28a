#pragma once

#include "model/OSTValidationItem.h"
#include "paint/OSTSwitchPainter.h"
#include "quick/OSTQuickElement.h"

class QPropertyAnimation;

namespace ostrel {

class OSTSwitchDescription;

// The "toggleSwitch" button element drawn by Qt Quick: an on/off switch in an element box that
// takes part in validation like a toggle button (a required switch is valid while on, an optional
// one always). Its starting state and colours come from its description. A click or Space, Enter
// or Return turns it, the thumb sliding across.
//
// The element takes the switch's natural size around the centre the layout gave it (frameInBox).
//
// Lives on the GUI thread; owned by its parent item.
class OSTQuickSwitch final : public OSTQuickElement, public OSTValidationItem {
    Q_OBJECT
    Q_PROPERTY(qreal thumbPosition READ thumbPosition WRITE setThumbPosition)

public:
    OSTQuickSwitch(const QRect &frame, const OSTSwitchDescription &description, QQuickItem *parent);

    // The switch's natural size centred in `box`: the geometry it takes for that layout box.
    static QRect frameInBox(const QRect &box);

    bool isOn() const { return m_on; }
    // 0 with the thumb at the off end, 1 at the on end.
    qreal thumbPosition() const { return m_thumbPosition; }
    void setThumbPosition(qreal position);
    // What a click does: turns the switch and tells its validation and the screen.
    void toggle();

    // A boolean of the on state.
    QVariant value() const override;
    // Sets the on state without animation; the model is deliberately not told.
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return true; }

signals:
    // The user turned the switch, after the model was updated.
    void tapped();

protected:
    void paintContent(QPainter &painter) override;
    void modelDidChange() override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void itemChange(ItemChange change, const ItemChangeData &value) override;

private:
    enum class Animation { Animated, Immediate };
    void setOn(bool on, Animation animation);
    void updateModelValidity();

    QPropertyAnimation *const m_slide; // child
    bool m_on = false;
    qreal m_thumbPosition = 0;
    OSTSwitchPainter m_switchPainter;
};

} // namespace ostrel
