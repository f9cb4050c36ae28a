#pragma once

#include "screen/OSTElementDescription.h"
#include "screen/OSTTextLook.h"

namespace ostrel {

// A label ("labels"), also a text field's placeholder and a picker's text:
//
//   "text"                the text; empty otherwise
//   "minimumScaleFactor"  a numeric string: how far the font may shrink to fit; 0 otherwise
//   and the text look (OSTTextLook).
//
// Immutable; GUI thread to read (fonts).
class OSTLabelDescription : public OSTElementDescription {
public:
    OSTLabelDescription(const QString &key, const QVariantMap &properties);

    const QString &text() const { return m_text; }
    const OSTTextLook &textLook() const { return m_textLook; }
    qreal minimumScaleFactor() const { return m_minimumScaleFactor; }

private:
    const QString m_text;
    const OSTTextLook m_textLook;
    const qreal m_minimumScaleFactor;
};

} // namespace ostrel
