#include "screen/OSTLabelDescription.h"

#include "screen/OSTElementKeys.h"
#include "screen/OSTPropertyValues.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTLabelDescription::OSTLabelDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::Label, key, properties),
      m_text(OSTElementKeys::text(properties)),
      m_textLook(OSTTextLook::fromProperties(properties)),
      m_minimumScaleFactor(ost_stringNumberForKey(properties, u"minimumScaleFactor"_s).value_or(0))
{
}

} // namespace ostrel
