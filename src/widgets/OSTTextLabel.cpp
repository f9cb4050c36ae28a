#include "widgets/OSTTextLabel.h"

#include <QEvent>
#include <QPainter>
#include <QTextDocument>

namespace ostrel {

namespace {

// Shrinking re-lays the text out for each trial size; beyond this length a text is drawn at its
// own size, so a hostile text cannot make every paint slow.
constexpr qsizetype longestTextToShrink = 10'000;
constexpr int shrinkSteps = 8;

} // namespace

OSTTextLabel::OSTTextLabel(QWidget *parent) : QLabel(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

OSTTextLabel::~OSTTextLabel() = default;

void OSTTextLabel::setAttributes(const OSTTextAttributes &attributes)
{
    m_attributes = attributes;
    invalidateDocument();
}

void OSTTextLabel::setMinimumScaleFactor(qreal factor)
{
    m_minimumScaleFactor = std::clamp<qreal>(factor, 0, 1);
    invalidateDocument();
}

void OSTTextLabel::invalidateDocument()
{
    m_document.reset();
    update();
}

qreal OSTTextLabel::fittedScale()
{
    document();
    return m_scale;
}

QTextDocument &OSTTextLabel::document()
{
    if (m_document && m_laidOutText == text())
        return *m_document;
    m_laidOutText = text();
    m_scale = 1;
    m_document = m_attributes.layOut(m_laidOutText, width(), font());
    const bool canShrink = m_minimumScaleFactor > 0 && m_minimumScaleFactor < 1
        && m_laidOutText.size() <= longestTextToShrink;
    if (!canShrink || m_document->size().height() <= height())
        return *m_document;
    // The largest scale between the factor and 1 at which the text fits, by bisection.
    qreal fits = m_minimumScaleFactor;
    qreal tooLarge = 1;
    for (int step = 0; step < shrinkSteps; ++step) {
        const qreal middle = (fits + tooLarge) / 2;
        if (m_attributes.layOut(m_laidOutText, width(), font(), middle)->size().height() <= height())
            fits = middle;
        else
            tooLarge = middle;
    }
    m_scale = fits;
    m_document = m_attributes.layOut(m_laidOutText, width(), font(), m_scale);
    return *m_document;
}

void OSTTextLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    m_attributes.paint(painter, document(), QRectF(rect()));
}

void OSTTextLabel::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    invalidateDocument();
}

void OSTTextLabel::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        invalidateDocument();
}

} // namespace ostrel
