#pragma once

#include "paint/OSTBoxPainter.h"

#include <QWidget>

namespace ostrel {

// The painted box of an element, as its box look (OSTBoxLook) describes it and OSTBoxPainter
// draws it: a flat colour or a linear or radial gradient, a border and rounded or circular corners.
//
// Every element view carries one as its container, filling it; the views of a group's members
// are its children. Children are clipped to the box's rounded outline and the border is drawn
// above them (through OSTRoundedClipEffect, set only while there are children to clip).
//
// Lives on the GUI thread and is owned by its parent widget.
class OSTBackgroundView final : public QWidget {
    Q_OBJECT

public:
    OSTBackgroundView(const QRect &frame, const OSTBoxLook &look, QWidget *parent = nullptr);

    // Restyles the box: the look replaces the whole earlier one.
    void setLook(const OSTBoxLook &look);

    const OSTBoxPainter &boxPainter() const { return m_boxPainter; }
    // The corner radius the box is drawn with at its current size.
    qreal cornerRadius() const { return m_boxPainter.cornerRadius(size()); }
    // Draws the box in its own coordinates, as paintEvent does; for widgets that draw a box
    // under their own content instead of showing this view.
    void paintBox(QPainter &painter) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void childEvent(QChildEvent *event) override;

private:
    bool clipsChildren() const;
    void updateChildClipping();

    OSTBoxPainter m_boxPainter;
};

} // namespace ostrel
