#pragma once

#include "screen/OSTBoxLook.h"

#include <QColor>
#include <QGradientStops>
#include <QList>
#include <QWidget>

#include <optional>

class QPainter;
class QPainterPath;

namespace ostrel {

// The painted box of an element, as its box look (OSTBoxLook) describes it: a flat colour or a
// linear or radial gradient, a border and rounded or circular corners.
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

    // The corner radius the box is drawn with at its current size: half the height for
    // "circle", limited to half the shorter side as a rounded rectangle allows.
    qreal cornerRadius() const;

    // The stops of a gradient through `colors`, each converted to red, green, blue and alpha
    // (an invalid colour is a clear stop). Stop i lies at i / (n - 1) in integer division, so
    // with three or more colours every stop but the last is at 0 and only the last two colours
    // show; a single colour is one stop at 0.
    static QGradientStops gradientStops(const QList<QColor> &colors);

    // The box's rounded outline in its own coordinates.
    QPainterPath outline() const;
    bool hasBorder() const { return m_look.borderWidth > 0; }
    // Names the border's width and colour, for keeping its drawing.
    QString borderKey() const;
    // Draws the border (when there is one) along the outline.
    void paintBorder(QPainter &painter) const;
    // Draws the whole box (fill, gradient, border) in its own coordinates, as paintEvent does;
    // for widgets that draw a box under their own content instead of showing this view.
    void paintBox(QPainter &painter) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void childEvent(QChildEvent *event) override;

private:
    void paintGradient(QPainter &painter, const QPainterPath &outline) const;
    bool clipsChildren() const;
    void updateChildClipping();

    OSTBoxLook m_look;
};

} // namespace ostrel
