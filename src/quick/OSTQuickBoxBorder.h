#pragma once

#include "paint/OSTBoxPainter.h"

#include <QQuickPaintedItem>

namespace ostrel {

// The border of a group's box drawn above the group's members, as the widget group draws it: the
// top item of the group's container, as large as the container.
//
// Lives on the GUI thread; a child item of the container it borders.
class OSTQuickBoxBorder final : public QQuickPaintedItem {
    Q_OBJECT

public:
    explicit OSTQuickBoxBorder(QQuickItem *container);

    void setBoxPainter(const OSTBoxPainter &boxPainter);
    void paint(QPainter *painter) override;

private:
    void followContainer();

    OSTBoxPainter m_boxPainter;
};

} // namespace ostrel
