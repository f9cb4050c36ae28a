#include "screen/OSTToolbarSettings.h"

#include "core/OSTDictionaryHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTToolbarSettings OSTToolbarSettings::fromProperties(const QVariantMap &properties)
{
    const QString style = ost_stringForKey(properties, u"barStyle"_s).value_or(u"default"_s);
    return {ost_stringForKey(properties, u"cancelText"_s).value_or(u"Cancel"_s),
            ost_stringForKey(properties, u"acceptText"_s).value_or(u"Done"_s),
            style == u"default"_s ? BarStyle::Default : BarStyle::Black, style == u"translucent"_s};
}

} // namespace ostrel
