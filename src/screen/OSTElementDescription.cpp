#include "screen/OSTElementDescription.h"

#include "core/OSTDictionaryHelpers.h"
#include "screen/OSTElementKeys.h"

using namespace Qt::StringLiterals;

namespace ostrel {

OSTElementDescription::OSTElementDescription(OSTElementKind kind, const QString &key, const QVariantMap &properties)
    : m_kind(kind),
      m_key(key),
      m_frame(OSTElementFrame::fromProperties(properties)),
      m_alpha(OSTElementKeys::alpha(properties, OSTElementKeys::NumberSpelling::NumericString)),
      m_box(OSTBoxLook::fromProperties(properties)),
      m_objectShadow(ost_objectShadowWithProperties(properties)),
      m_accessibilityLabel(ost_stringForKey(properties, u"accessibilityLabel"_s))
{
}

OSTElementDescription::~OSTElementDescription() = default;

} // namespace ostrel
