#include "quick/OSTQuickLabel.h"

#include "quick/OSTQuickAccessibility.h"
#include "screen/OSTLabelDescription.h"

namespace ostrel {

OSTQuickLabel::OSTQuickLabel(const QRect &frame, const OSTLabelDescription &description, QQuickItem *parent)
    : OSTQuickElement(frame, description, parent)
{
    customize(description);
}

void OSTQuickLabel::customize(const OSTLabelDescription &description)
{
    OSTQuickElement::customize(description);
    m_textLook = description.textLook();
    m_minimumScaleFactor = description.minimumScaleFactor();
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
    OSTQuickElement::paintContent(painter);
}

} // namespace ostrel
