#include "paint/OSTTextAttributes.h"

#include "paint/OSTAlphaBlur.h"
#include "paint/OSTPaintedLayerCache.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>

#include <cmath>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

// The standard deviation, in layer pixels, above which a text shadow is made at a lower ratio.
constexpr qreal maximumShadowSigma = 16;
// How far, in points, a text shadow may spread before it is too faint to draw.
constexpr qreal maximumShadowMargin = 100'000;

} // namespace

OSTTextAttributes::OSTTextAttributes(const OSTTextLook &look)
    : m_font(look.font), m_textColor(look.textColor), m_shadow(look.shadow), m_underlined(look.underlined),
      m_lineSpacing(look.lineSpacing), m_alignment(look.alignment)
{
}

Qt::Alignment OSTTextAttributes::horizontalAlignment() const
{
    switch (m_alignment) {
    case NSTextAlignmentLeft:
        return Qt::AlignLeft;
    case NSTextAlignmentRight:
        return Qt::AlignRight;
    case NSTextAlignmentJustified:
        return Qt::AlignJustify;
    case NSTextAlignmentNatural:
        return Qt::AlignLeading;
    case NSTextAlignmentCenter:
        break;
    }
    return Qt::AlignHCenter;
}

std::unique_ptr<QTextDocument> OSTTextAttributes::layOut(const QString &text, qreal width,
                                                        const QFont &fallbackFont, qreal scale) const
{
    auto document = std::make_unique<QTextDocument>();
    document->setDocumentMargin(0);
    document->setUndoRedoEnabled(false);
    QFont font = m_font.value_or(fallbackFont);
    if (scale != 1 && font.pixelSize() > 0)
        font.setPixelSize(std::max(1, int(std::lround(font.pixelSize() * scale))));
    document->setDefaultFont(font);
    document->setTextWidth(std::max<qreal>(width, 0));

    QTextCursor cursor(document.get());
    QTextBlockFormat block;
    block.setAlignment(horizontalAlignment());
    if (m_lineSpacing)
        block.setLineHeight(*m_lineSpacing, QTextBlockFormat::LineDistanceHeight);
    cursor.setBlockFormat(block);
    QTextCharFormat characters;
    characters.setForeground(m_textColor);
    characters.setFontUnderline(m_underlined);
    cursor.insertText(text, characters);
    // Every paragraph of a multi-line text shares the first one's alignment and spacing.
    for (QTextBlock each = document->begin(); each.isValid(); each = each.next())
        QTextCursor(each).setBlockFormat(block);
    return document;
}

void OSTTextAttributes::paint(QPainter &painter, QTextDocument &document, const QRectF &box) const
{
    const qreal height = document.size().height();
    const QPointF origin(box.left(), box.top() + std::max<qreal>(0, (box.height() - height) / 2));
    painter.save();
    painter.setClipRect(box, Qt::IntersectClip);
    if (m_shadow)
        paintShadow(painter, document, origin);
    painter.translate(origin);
    document.drawContents(&painter);
    painter.restore();
}

void OSTTextAttributes::paintShadow(QPainter &painter, QTextDocument &document,
                                    const QPointF &origin) const
{
    // The text drawn as coverage only, blurred, then coloured: the same soft shadow as an
    // element's drop shadow. A wide blur is soft everywhere, so it is made at a lower ratio, where
    // its standard deviation is at most maximumShadowSigma pixels, and scaled up: a "1000"-point
    // blur costs what a small one does. The blurred layer is kept, so a repaint is a copy.
    const qreal deviceRatio = OSTPaintedLayerCache::devicePixelRatio(painter);
    const qreal blurSigma = std::max<qreal>(0, m_shadow->blurRadius / 2);
    const qreal ratio = blurSigma * deviceRatio > maximumShadowSigma ? maximumShadowSigma / blurSigma : deviceRatio;
    const qreal sigma = blurSigma * ratio;
    const qreal margin = std::ceil((OSTAlphaBlur::reach(sigma) + 1) / ratio);
    if (margin > maximumShadowMargin)
        return; // spread this wide, the shadow is too faint to see
    const QSizeF textSize = document.size();
    const QSize size(int(std::ceil(textSize.width() + 2 * margin)), int(std::ceil(textSize.height() + 2 * margin)));
    if (size.isEmpty() || qreal(size.width()) * size.height() * ratio * ratio > 64'000'000)
        return;
    const QString key = u"text shadow %1 %2 %3 %4"_s.arg(m_shadow->color.name(QColor::HexArgb))
                            .arg(sigma)
                            .arg(document.textWidth())
                            .arg(document.toHtml());
    const QImage shadow = OSTPaintedLayerCache::layer(key, size, ratio, [&](QPainter &layerPainter) {
        QImage coverage(QSizeF(size * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        coverage.fill(Qt::transparent);
        {
            QPainter textPainter(&coverage);
            textPainter.scale(ratio, ratio);
            textPainter.translate(margin, margin);
            document.drawContents(&textPainter);
        }
        QImage mask = coverage.convertToFormat(QImage::Format_Alpha8);
        OSTAlphaBlur::blur(mask, sigma);
        QImage coloured = OSTAlphaBlur::colorized(mask, m_shadow->color);
        coloured.setDevicePixelRatio(ratio);
        layerPainter.drawImage(QPointF(), coloured);
    });
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, ratio < deviceRatio);
    painter.drawImage(origin + m_shadow->offset - QPointF(margin, margin), shadow);
    painter.restore();
}

} // namespace ostrel
