#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTImageSource.h"

namespace ostrel {

// An image ("images"), also each state's background of a button and a picker's box: an element
// with what it shows (OSTImageSource). Immutable, on any thread.
class OSTImageDescription : public OSTElementDescription {
public:
    OSTImageDescription(const QString &key, const QVariantMap &properties);

    const OSTImageSource &source() const { return m_source; }

private:
    const OSTImageSource m_source;
};

} // namespace ostrel
