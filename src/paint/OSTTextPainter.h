#pragma once

#include "paint/OSTTextAttributes.h"

#include <QFont>
#include <QSizeF>
#include <QString>

#include <memory>

class QPainter;
class QTextDocument;

namespace ostrel {

// Paints the text of a label: the text laid out by its attributes (OSTTextAttributes) at the
// width of its box, centred vertically in it, its shadow beneath. When the text does not fit
// the box's height and a minimum scale factor is set, the font shrinks, but not below that
// factor.
//
// Coordinates are the painter's; the box is given in them. Keeps the last layout and reuses it
// while the text, the box's size and the fallback font stay the same, so the painting calls are
// not const. Owned by the view or item that shows the text; lays out and paints on whichever
// thread owns the painter and that owner (the GUI thread for widgets). A shadow's blur is kept
// in OSTPaintedLayerCache, which has its own thread rule.
class OSTTextPainter {
public:
    OSTTextPainter();
    OSTTextPainter(OSTTextPainter &&) noexcept;
    OSTTextPainter &operator=(OSTTextPainter &&) noexcept;
    ~OSTTextPainter();

    void setAttributes(const OSTTextAttributes &attributes);
    const OSTTextAttributes &attributes() const { return m_attributes; }
    // Held to [0, 1]; 0 or 1 never shrinks.
    void setMinimumScaleFactor(qreal factor);
    qreal minimumScaleFactor() const { return m_minimumScaleFactor; }

    // The scale the font of `text` is drawn at in a box of `size` (1 when it fits), with
    // `fallbackFont` where the attributes name no font.
    qreal fittedScale(const QString &text, const QSizeF &size, const QFont &fallbackFont);

    // Paints `text` into `box` at its fitted scale. Antialiased; the painter's state is kept.
    void paint(QPainter &painter, const QString &text, const QRectF &box, const QFont &fallbackFont);

private:
    QTextDocument &document(const QString &text, const QSizeF &size, const QFont &fallbackFont);
    qreal shrunkScale(const QString &text, const QSizeF &size, const QFont &fallbackFont) const;

    OSTTextAttributes m_attributes;
    qreal m_minimumScaleFactor = 0;
    // The last layout and what it was made for.
    std::unique_ptr<QTextDocument> m_document;
    QString m_laidOutText;
    QSizeF m_laidOutSize;
    QFont m_laidOutFont;
    qreal m_scale = 1;
};

} // namespace ostrel
