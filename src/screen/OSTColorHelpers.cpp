#include "screen/OSTColorHelpers.h"

#include "core/OSTDictionaryHelpers.h"

#include <array>
#include <optional>

namespace ostrel {

namespace {

// Where each component's digits stand once the "#" characters are gone, by string length.
struct HexLayout {
    qsizetype digitsPerComponent;
    bool hasAlpha;
};

std::optional<HexLayout> layoutForLength(qsizetype length)
{
    switch (length) {
    case 3:
        return HexLayout{1, false};
    case 4:
        return HexLayout{1, true};
    case 6:
        return HexLayout{2, false};
    case 8:
        return HexLayout{2, true};
    default:
        return std::nullopt;
    }
}

int hexadecimalDigitValue(QChar character)
{
    const char16_t code = character.unicode();
    if (code >= u'0' && code <= u'9')
        return code - u'0';
    if (code >= u'A' && code <= u'F')
        return code - u'A' + 10;
    if (code >= u'a' && code <= u'f')
        return code - u'a' + 10;
    return -1;
}

// The value of the hexadecimal digits at the start of `text`; -1 when it starts with none.
int leadingHexadecimalValue(QStringView text)
{
    int value = -1;
    for (const QChar character : text) {
        const int digit = hexadecimalDigitValue(character);
        if (digit < 0)
            break;
        value = (value < 0 ? 0 : value * 16) + digit;
    }
    return value;
}

} // namespace

double ost_colorComponentFrom(const QString &string, qsizetype start, qsizetype length)
{
    if (start < 0 || length < 1 || start + length > string.size())
        return -1;
    QString digits = string.mid(start, length);
    if (length == 1)
        digits += digits;
    const int value = leadingHexadecimalValue(digits);
    return value < 0 ? -1 : value / 255.0;
}

QColor ost_colorWithHexString(const QString &hexString)
{
    const QString digits = QString(hexString).remove(u'#').toUpper();
    const auto layout = layoutForLength(digits.size());
    if (!layout)
        return QColor(Qt::transparent);

    const qsizetype width = layout->digitsPerComponent;
    std::array<double, 4> components{0, 0, 0, 1};
    const int count = layout->hasAlpha ? 4 : 3;
    for (int index = 0; index < count; ++index) {
        components[index] = ost_colorComponentFrom(digits, index * width, width);
        if (components[index] < 0)
            return QColor(Qt::transparent);
    }
    return QColor::fromRgbF(float(components[0]), float(components[1]), float(components[2]),
                            float(components[3]));
}

QColor ost_colorForKey(const QVariantMap &properties, const QString &key)
{
    const auto text = ost_stringForKey(properties, key);
    return text ? ost_colorWithHexString(*text) : QColor();
}

bool ost_isClear(const QColor &color)
{
    return color.isValid() && color.rgba64().alpha() == 0;
}

} // namespace ostrel
