#pragma once

#include "render/OSTShadow.h"

#include <ostrel/OSTPropertyConversions.h>

#include <QColor>
#include <QFont>
#include <QRectF>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>

class QPainter;
class QTextDocument;

namespace ostrel {

// How a label or a button title draws its text, read from an element's properties:
//
//   "font", "size"  the font (see OSTFontResolver); no font keeps the widget's own
//   "textColor"     hexadecimal colour; absent keeps black
//   "shadow"        text shadow [colour, blur radius, x offset, y offset]
//   "style"         "underlined" underlines the text
//   "lineSpacing"   extra points between lines
//   "alignment"     "left", "center", "right", "justified", "natural"; default centre
//
// Text is laid out by Qt's text layout (QTextDocument): words wrap at the box's width and the
// block is centred vertically in the box, as a label centres its text. A value type; building
// documents and painting need the GUI thread.
class OSTTextAttributes {
public:
    OSTTextAttributes() = default;
    explicit OSTTextAttributes(const QVariantMap &properties);

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
