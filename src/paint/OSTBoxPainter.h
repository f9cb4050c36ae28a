#pragma once

#include "screen/OSTBoxLook.h"

#include <QColor>
#include <QGradientStops>
#include <QList>
#include <QSizeF>
#include <QString>

class QPainter;
class QPainterPath;

namespace ostrel {

// Paints the box of an element as its box look (OSTBoxLook) describes it: a flat colour or a
// linear or radial gradient, a border and rounded or circular corners.
//
// Coordinates are the box's own: the box fills (0, 0, size). Every painting call saves and
// restores the painter's state. A value type; paints on whichever thread owns the painter.
class OSTBoxPainter {
public:
    enum class Border { Included, Omitted };

    OSTBoxPainter() = default;
    explicit OSTBoxPainter(const OSTBoxLook &look) : m_look(look) {}

    const OSTBoxLook &look() const { return m_look; }
    bool hasBorder() const { return m_look.borderWidth > 0; }
    // Whether the corners are rounded at all: "circle" or a radius above 0.
    bool isRounded() const;

    // The corner radius the box is drawn with at `size`: half the height for "circle", limited
    // to half the shorter side as a rounded rectangle allows.
    qreal cornerRadius(const QSizeF &size) const;
    // The box's rounded outline at `size`.
    QPainterPath outline(const QSizeF &size) const;

    // The stops of a gradient through `colors`, each converted to red, green, blue and alpha
    // (an invalid colour is a clear stop). Stop i lies at i / (n - 1) in integer division, so
    // with three or more colours every stop but the last is at 0 and only the last two colours
    // show; a single colour is one stop at 0.
    static QGradientStops gradientStops(const QList<QColor> &colors);

    // Names the border's width and colour, for keeping its drawing.
    QString borderKey() const;
    // Draws the border (when there is one) inside the outline at `size`.
    void paintBorder(QPainter &painter, const QSizeF &size) const;
    // Draws the whole box at `size`: the fill or gradient, then the border unless it is
    // omitted (a box that clips children draws its border above them instead).
    void paint(QPainter &painter, const QSizeF &size, Border border = Border::Included) const;

private:
    void paintGradient(QPainter &painter, const QPainterPath &outline, const QSizeF &size) const;

    OSTBoxLook m_look;
};

} // namespace ostrel
