#include "widgets/OSTTextLabel.h"

#include <QPainter>

namespace ostrel {

OSTTextLabel::OSTTextLabel(QWidget *parent) : QLabel(parent)
{
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void OSTTextLabel::setAttributes(const OSTTextAttributes &attributes)
{
    m_textPainter.setAttributes(attributes);
    update();
}

void OSTTextLabel::setMinimumScaleFactor(qreal factor)
{
    m_textPainter.setMinimumScaleFactor(factor);
    update();
}

qreal OSTTextLabel::fittedScale()
{
    return m_textPainter.fittedScale(text(), size(), font());
}

void OSTTextLabel::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_textPainter.paint(painter, text(), QRectF(rect()), font());
}

} // namespace ostrel
