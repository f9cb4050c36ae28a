#include "screen/OSTTextLook.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTColorHelpers.h"
#include "screen/OSTElementKeys.h"
#include "screen/OSTFontResolver.h"
#include "screen/OSTPropertyValues.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

constexpr qreal maximumLineSpacing = 1000;

} // namespace

OSTTextLook OSTTextLook::fromProperties(const QVariantMap &properties)
{
    OSTTextLook look;
    look.font = OSTFontResolver::fontWithProperties(properties);
    look.shadow = ost_shadowWithProperties(properties);
    look.underlined = ost_stringForKey(properties, u"style"_s) == u"underlined"_s;
    look.alignmentWord = OSTElementKeys::alignment(properties);
    look.alignment = NSTextAlignmentFromString(look.alignmentWord);
    if (const auto color = ost_stringForKey(properties, u"textColor"_s)) {
        look.textColor = ost_colorWithHexString(*color);
        look.hasTextColor = true;
    }
    if (const auto spacing = ost_stringNumberForKey(properties, u"lineSpacing"_s); spacing && *spacing > 0)
        look.lineSpacing = std::min(*spacing, maximumLineSpacing);
    return look;
}

} // namespace ostrel
