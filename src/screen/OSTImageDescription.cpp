#include "screen/OSTImageDescription.h"

namespace ostrel {

OSTImageDescription::OSTImageDescription(const QString &key, const QVariantMap &properties)
    : OSTElementDescription(OSTElementKind::Image, key, properties),
      m_source(OSTImageSource::fromProperties(properties))
{
}

} // namespace ostrel
