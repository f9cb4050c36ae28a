#include "quick/OSTQuickLabel.h"

#include "quick/OSTQuickAccessibility.h"
#include "screen/OSTLabelDescription.h"

#include <QGuiApplication>

namespace ostrel {

OSTQuickLabel::OSTQuickLabel(const QRect &frame, const OSTLabelDescription &description, QQuickItem *parent)
    : OSTQuickElement(frame, description, parent)
{
    customize(description);
}

void OSTQuickLabel::customize(const OSTLabelDescription &description)
{
    OSTQuickElement::customize(description);
    m_textPainter.setAttributes(OSTTextAttributes(description.textLook()));
    m_textPainter.setMinimumScaleFactor(description.minimumScaleFactor());
    setText(description.text());
}

void OSTQuickLabel::setText(const QString &text)
{
    m_text = text;
    OSTQuickAccessibility::describe(*this, QAccessible::StaticText, text);
    update();
}

void OSTQuickLabel::paintContent(QPainter &painter)
{
    m_textPainter.paint(painter, m_text, boundingRect(), QGuiApplication::font());
}

} // namespace ostrel
