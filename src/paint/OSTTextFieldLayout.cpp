#include "paint/OSTTextFieldLayout.h"

#include "paint/OSTTextAttributes.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace ostrel {

namespace {

Qt::Alignment verticalAlignmentOf(UIControlContentVerticalAlignment alignment)
{
    switch (alignment) {
    case UIControlContentVerticalAlignmentTop:
        return Qt::AlignTop;
    case UIControlContentVerticalAlignmentBottom:
        return Qt::AlignBottom;
    case UIControlContentVerticalAlignmentCenter:
    case UIControlContentVerticalAlignmentFill:
        break;
    }
    return Qt::AlignVCenter;
}

Qt::Alignment horizontalAlignmentOf(const OSTTextFieldDescription &description)
{
    if (const std::optional<QString> &word = description.alignmentWord())
        return OSTTextFieldLayout::horizontalAlignmentOfWord(*word);
    if (!description.contentHorizontalAlignment())
        return Qt::AlignLeft;
    switch (*description.contentHorizontalAlignment()) {
    case UIControlContentHorizontalAlignmentCenter:
        return Qt::AlignHCenter;
    case UIControlContentHorizontalAlignmentRight:
        return Qt::AlignRight;
    case UIControlContentHorizontalAlignmentLeft:
    case UIControlContentHorizontalAlignmentFill:
        break;
    }
    return Qt::AlignLeft;
}

// `font` scaled by `factor`, in the unit it was sized in.
QFont scaledFont(QFont font, qreal factor, qreal minimumPixelSize)
{
    if (font.pixelSize() > 0)
        font.setPixelSize(int(std::max(minimumPixelSize, std::floor(font.pixelSize() * factor))));
    else
        font.setPointSizeF(std::max(minimumPixelSize, font.pointSizeF() * factor));
    return font;
}

} // namespace

Qt::Alignment OSTTextFieldLayout::fieldAlignment(const OSTTextFieldDescription &description)
{
    return horizontalAlignmentOf(description) | verticalAlignmentOf(description.verticalAlignment());
}

Qt::Alignment OSTTextFieldLayout::horizontalAlignmentOfWord(const QString &word)
{
    OSTTextLook look;
    look.alignment = NSTextAlignmentFromString(word);
    return OSTTextAttributes(look).horizontalAlignment();
}

QFont OSTTextFieldLayout::fittedFont(const OSTTextFieldDescription &description, const QFont &font,
                                     const QString &shownText, qreal availableWidth)
{
    if (!description.adjustsFontSizeToFitWidth())
        return font;
    const qreal natural = QFontMetricsF(font).horizontalAdvance(shownText);
    if (natural <= availableWidth || availableWidth <= 0)
        return font;
    return scaledFont(font, availableWidth / natural, std::max<qreal>(description.minimumFontSize(), 1));
}

} // namespace ostrel
