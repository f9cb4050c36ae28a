#include "screen/OSTElementDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTPropertyValues.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace ostrel {

OSTElementDescription::OSTElementDescription(OSTElementKind kind, const QString &key, const QVariantMap &properties)
    : m_kind(kind),
      m_key(key),
      m_frame(OSTElementFrame::fromProperties(properties)),
      m_alpha(std::clamp(ost_stringNumberForKey(properties, u"alpha"_s).value_or(1.0), 0.0, 1.0)),
      m_box(OSTBoxLook::fromProperties(properties)),
      m_objectShadow(ost_objectShadowWithProperties(properties)),
      m_accessibilityLabel(ost_stringForKey(properties, u"accessibilityLabel"_s))
{
}

OSTElementDescription::~OSTElementDescription() = default;

} // namespace ostrel
