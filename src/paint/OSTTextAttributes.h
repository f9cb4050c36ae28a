#pragma once

#include "screen/OSTShadow.h"
#include "screen/OSTTextLook.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>

#include <memory>
#include <optional>

class QPainter;
class QTextDocument;

namespace ostrel {

// How a label or a button title draws its text: the text look of its element (OSTTextLook),
// read from its properties or given.
//
// Text is laid out by Qt's text layout (QTextDocument): words wrap at the box's width and the
// block is centred vertically in the box, as a label centres its text. A value type; building
// documents and painting need the GUI thread, or a thread painting while it waits (as
// OSTPaintedLayerCache, which keeps the shadows).
class OSTTextAttributes {
public:
    OSTTextAttributes() = default;
    explicit OSTTextAttributes(const OSTTextLook &look);

    const std::optional<QFont> &font() const { return m_font; }
    QColor textColor() const { return m_textColor; }
    const std::optional<OSTShadow> &shadow() const { return m_shadow; }
    bool isUnderlined() const { return m_underlined; }
    std::optional<qreal> lineSpacing() const { return m_lineSpacing; }
    NSTextAlignment alignment() const { return m_alignment; }
    Qt::Alignment horizontalAlignment() const;

    // The laid-out text at `width`, with `fallbackFont` when no font was named and every font
    // size multiplied by `scale`.
    std::unique_ptr<QTextDocument> layOut(const QString &text, qreal width, const QFont &fallbackFont,
                                          qreal scale = 1) const;

    // Paints a laid-out document centred vertically in `box` (from the top when it is taller),
    // its shadow first.
    void paint(QPainter &painter, QTextDocument &document, const QRectF &box) const;

private:
    void paintShadow(QPainter &painter, QTextDocument &document, const QPointF &origin) const;

    std::optional<QFont> m_font;
    QColor m_textColor = Qt::black;
    std::optional<OSTShadow> m_shadow;
    bool m_underlined = false;
    std::optional<qreal> m_lineSpacing;
    NSTextAlignment m_alignment = NSTextAlignmentCenter;
};

} // namespace ostrel
