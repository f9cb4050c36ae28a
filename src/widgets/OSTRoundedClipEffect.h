#pragma once

#include <QGraphicsEffect>
#include <QPointer>

namespace ostrel {

class OSTBackgroundView;

// Clips an element box and everything inside it (a group's members, a label's text) to the box's
// rounded outline, with smooth edges, then draws the box's border on top, so members that reach
// the edges neither square off the corners nor cover the border. The outline's mask and the
// border are painted once per shape and kept (OSTPaintedLayerCache).
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
    // The box's size, corners and the layer's offset: what the mask and border depend on.
    QString shapeKey(QPoint offset) const;
    // Coverage of the box's rounded outline over a layer of `size` points whose top left lies
    // at `offset` in the box.
    QImage outlineMask(const QSize &size, qreal ratio, QPoint offset) const;
    QImage borderLayer(const QSize &size, qreal ratio, QPoint offset) const;

    QPointer<OSTBackgroundView> m_box;
};

} // namespace ostrel
