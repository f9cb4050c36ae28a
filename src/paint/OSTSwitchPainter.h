#pragma once

#include <QColor>
#include <QSizeF>
#include <QString>

class QPainter;

namespace ostrel {

// Paints an on/off switch: a capsule track whose off outline shows around a fill of the on
// colour that grows with the thumb's position, and a round thumb with a soft shadow below it.
//
// Coordinates are the switch's own: it fills (0, 0, size). A value type; paints on whichever
// thread owns the painter.
class OSTSwitchPainter {
public:
    // An invalid colour keeps the default: green track when on, light grey outline when off,
    // white thumb.
    void setOnTintColor(const QColor &color);
    void setTintColor(const QColor &color);
    void setThumbTintColor(const QColor &color);
    QColor onTintColor() const { return m_onTint; }
    QColor tintColor() const { return m_tint; }
    QColor thumbTintColor() const { return m_thumbTint; }

    // Names the colours, `position` and `focusColor`: everything paint() draws but the size.
    QString key(qreal position, const QColor &focusColor) const;

    // Paints the switch at `size` with the thumb at `position` (0 at the off end, 1 at the on
    // end, held to that range), and a focus ring in `focusColor` when that is valid. Sets
    // antialiasing, pen and brush on the painter.
    void paint(QPainter &painter, const QSizeF &size, qreal position, const QColor &focusColor = QColor()) const;

private:
    QColor m_onTint = defaultOnTint();
    QColor m_tint = defaultTint();
    QColor m_thumbTint = Qt::white;

    static QColor defaultOnTint() { return {52, 199, 89}; }
    static QColor defaultTint() { return {229, 229, 234}; }
};

} // namespace ostrel
