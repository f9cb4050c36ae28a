#pragma once

#include <QGraphicsEffect>
#include <QPointer>

namespace ostrel {

class OSTBackgroundView;

// Clips an element box and everything inside it (a group's members, a label's text) to the box's
// rounded outline, with smooth edges, then draws the box's border on top, so members that reach
// the edges neither square off the corners nor cover the border.
//
// Set on the box itself by OSTBackgroundView while it has rounded corners or a border and
// holds child widgets. GUI thread; owned by the box (setGraphicsEffect).
class OSTRoundedClipEffect final : public QGraphicsEffect {
    Q_OBJECT

public:
    explicit OSTRoundedClipEffect(OSTBackgroundView *box);

protected:
    void draw(QPainter *painter) override;

private:
    QPointer<OSTBackgroundView> m_box;
};

} // namespace ostrel
