#pragma once

#include <QSizeF>

class QPainter;

namespace ostrel {

// Paints the cover shown while a request runs: a dark dim over the whole area and, in its
// centre, a spinner of white spokes that fade behind the leading one.
//
// Coordinates are the covered area's own: it fills (0, 0, size). Stateless; paints on whichever
// thread owns the painter.
class OSTLoadingIndicatorPainter {
public:
    OSTLoadingIndicatorPainter() = delete;

    // How long the spinner takes to turn once; an animation runs the angle from 0 to 360 in it.
    static constexpr int turnMilliseconds = 1000;

    // Paints the dim and the spinner turned by `angle` degrees, all at `presence` (0 invisible,
    // 1 fully shown). The painter's state is kept.
    static void paint(QPainter &painter, const QSizeF &size, qreal presence, qreal angle);

private:
    static void paintSpinner(QPainter &painter, const QSizeF &size, qreal angle);
};

} // namespace ostrel
