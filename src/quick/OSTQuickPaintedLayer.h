#pragma once

#include <QQuickPaintedItem>

#include <functional>

namespace ostrel {

// A painted item whose drawing belongs to its parent: for an item that draws above some of its
// children (a button's title above its state backgrounds). Qt Quick puts an item's own content
// beneath its children with a negative z only when their scene nodes are made in the right order,
// which a button disabled before its first frame does not get; a child above them always is.
//
// Lives on the GUI thread; a child item of the item whose drawing it is, which sizes it.
class OSTQuickPaintedLayer final : public QQuickPaintedItem {
    Q_OBJECT

public:
    using Painting = std::function<void(QPainter &painter)>;

    OSTQuickPaintedLayer(Painting painting, QQuickItem *parent);

    void paint(QPainter *painter) override;

private:
    const Painting m_painting;
};

} // namespace ostrel
