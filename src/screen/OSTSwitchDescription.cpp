#include "screen/OSTSwitchDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTColorHelpers.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTSwitchDescription::OSTSwitchDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::Switch, key, properties),
      m_initiallyOn(ost_stringForKey(properties, u"defaultState"_s) == u"pressed"_s),
      m_onTintColor(ost_colorForKey(properties, u"onTintColor"_s)),
      m_tintColor(ost_colorForKey(properties, u"tintColor"_s)),
      m_thumbTintColor(ost_colorForKey(properties, u"thumbTintColor"_s)),
      m_validation(OSTValidationSettings::fromProperties(key, properties))
{
}

} // namespace ostrel
