#include "layout/OSTLayoutElement.h"

#include "layout/OSTLayoutNumbers.h"

#include <ostrel/OSTConstants.h>

namespace ostrel {

const QString OSTLayoutElement::numericPattern = QStringLiteral(u"^[0-9]+(?:\\.[0-9]+)?$");

const QString &OSTLayoutElement::attributeName(Attribute attribute)
{
    switch (attribute) {
    case X:
        return OSTLayoutElementXAttributeKey;
    case Y:
        return OSTLayoutElementYAttributeKey;
    case Width:
        return OSTLayoutElementWidthAttributeKey;
    case Height:
        break;
    }
    return OSTLayoutElementHeightAttributeKey;
}

int OSTLayoutElement::attributeIndex(QStringView name)
{
    switch (name.size()) {
    case 1:
        return name[0] == u'x' ? X : name[0] == u'y' ? Y : -1;
    case 5:
        return name == u"width" ? Width : -1;
    case 6:
        return name == u"height" ? Height : -1;
    default:
        return -1;
    }
}

OSTLayoutElement::OSTLayoutElement() = default;

OSTLayoutElement::OSTLayoutElement(const OSTElementFrame &frame)
    : m_anchored(frame.anchored), m_zLayer(frame.zLayer.value_or(0))
{
    setValue(frame.x, X);
    setValue(frame.y, Y);
    setValue(frame.width, Width);
    setValue(frame.height, Height);
}

void OSTLayoutElement::setValue(const QString &value, const QString &attribute)
{
    const int index = attributeIndex(attribute);
    if (index >= 0)
        setValue(value, Attribute(index));
}

void OSTLayoutElement::setValue(const QString &value, Attribute attribute)
{
    m_values[attribute] = value;
    m_present |= bit(attribute);
    if (isNumericString(value))
        m_resolved |= bit(attribute);
    else
        m_resolved &= std::uint8_t(~bit(attribute));
}

std::optional<QString> OSTLayoutElement::valueOfAttribute(const QString &attribute) const
{
    const int index = attributeIndex(attribute);
    if (index < 0 || !hasAttribute(Attribute(index)))
        return std::nullopt;
    return m_values[index];
}

bool OSTLayoutElement::isAttributeResolved(const QString &attribute) const
{
    const int index = attributeIndex(attribute);
    return index >= 0 && isAttributeResolved(Attribute(index));
}

QMap<QString, QString> OSTLayoutElement::attributes() const
{
    QMap<QString, QString> result;
    for (int index = 0; index < attributeCount; ++index) {
        if (hasAttribute(Attribute(index)))
            result.insert(attributeName(Attribute(index)), m_values[index]);
    }
    return result;
}

QMap<QString, bool> OSTLayoutElement::attributesResolved() const
{
    QMap<QString, bool> result;
    for (int index = 0; index < attributeCount; ++index) {
        if (hasAttribute(Attribute(index)))
            result.insert(attributeName(Attribute(index)), isAttributeResolved(Attribute(index)));
    }
    return result;
}

QRectF OSTLayoutElement::frame() const
{
    if (!isResolved())
        return QRectF(0, 0, 0, 0);
    const auto number = [this](Attribute attribute) {
        return hasAttribute(attribute) ? OSTLayoutNumbers::decimalValue(m_values[attribute]) : 0.0;
    };
    return QRectF(number(X), number(Y), number(Width), number(Height));
}

bool OSTLayoutElement::isNumericString(QStringView text)
{
    const auto isDigit = [](QChar c) { return c >= u'0' && c <= u'9'; };
    qsizetype index = 0;
    const qsizetype size = text.size();
    while (index < size && isDigit(text[index]))
        ++index;
    if (index == 0)
        return false;
    if (index == size)
        return true;
    if (text[index] != u'.')
        return false;
    const qsizetype fraction = ++index;
    while (index < size && isDigit(text[index]))
        ++index;
    return index == size && index > fraction;
}

} // namespace ostrel
