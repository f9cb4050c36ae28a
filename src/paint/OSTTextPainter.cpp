#include "paint/OSTTextPainter.h"

#include <QPainter>
#include <QTextDocument>

#include <algorithm>

namespace ostrel {

namespace {

// Shrinking re-lays the text out for each trial size; beyond this length a text is drawn at its
// own size, so a hostile text cannot make every paint slow.
constexpr qsizetype longestTextToShrink = 10'000;
constexpr int shrinkSteps = 8;

} // namespace

OSTTextPainter::OSTTextPainter() = default;
OSTTextPainter::OSTTextPainter(OSTTextPainter &&) noexcept = default;
OSTTextPainter &OSTTextPainter::operator=(OSTTextPainter &&) noexcept = default;
OSTTextPainter::~OSTTextPainter() = default;

void OSTTextPainter::setAttributes(const OSTTextAttributes &attributes)
{
    m_attributes = attributes;
    m_document.reset();
}

void OSTTextPainter::setMinimumScaleFactor(qreal factor)
{
    m_minimumScaleFactor = std::clamp<qreal>(factor, 0, 1);
    m_document.reset();
}

qreal OSTTextPainter::fittedScale(const QString &text, const QSizeF &size, const QFont &fallbackFont)
{
    document(text, size, fallbackFont);
    return m_scale;
}

void OSTTextPainter::paint(QPainter &painter, const QString &text, const QRectF &box, const QFont &fallbackFont)
{
    QTextDocument &laidOut = document(text, box.size(), fallbackFont);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    m_attributes.paint(painter, laidOut, box);
    painter.restore();
}

QTextDocument &OSTTextPainter::document(const QString &text, const QSizeF &size, const QFont &fallbackFont)
{
    if (m_document && m_laidOutText == text && m_laidOutSize == size && m_laidOutFont == fallbackFont)
        return *m_document;
    m_laidOutText = text;
    m_laidOutSize = size;
    m_laidOutFont = fallbackFont;
    m_scale = 1;
    m_document = m_attributes.layOut(text, size.width(), fallbackFont);
    const bool canShrink = m_minimumScaleFactor > 0 && m_minimumScaleFactor < 1 && text.size() <= longestTextToShrink;
    if (!canShrink || m_document->size().height() <= size.height())
        return *m_document;
    m_scale = shrunkScale(text, size, fallbackFont);
    m_document = m_attributes.layOut(text, size.width(), fallbackFont, m_scale);
    return *m_document;
}

qreal OSTTextPainter::shrunkScale(const QString &text, const QSizeF &size, const QFont &fallbackFont) const
{
    // The largest scale between the factor and 1 at which the text fits, by bisection.
    qreal fits = m_minimumScaleFactor;
    qreal tooLarge = 1;
    for (int step = 0; step < shrinkSteps; ++step) {
        const qreal middle = (fits + tooLarge) / 2;
        if (m_attributes.layOut(text, size.width(), fallbackFont, middle)->size().height() <= size.height())
            fits = middle;
        else
            tooLarge = middle;
    }
    return fits;
}

} // namespace ostrel
