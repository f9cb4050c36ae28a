#pragma once

// Whether the layout engine built from a screen document took the document's layout table: the
// same keys, each with the same frame formulas, anchoring, layer and group.
// The screen-view fuzzer checks it on arbitrary screens; the screen tests on the sample screens
// and on groups that list missing, later or themselves.

#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QString>

namespace ostrel {

// The first difference, or an empty text when the two agree. `layout` is unresolved.
inline QString ost_layoutTableDifference(const OSTScreenDocument &document, const OSTLayoutManager &layout)
{
    const auto &entries = document.layoutEntries();
    const auto &elements = layout.elements();
    if (entries.keys() != elements.keys())
        return QStringLiteral("the keys differ");
    for (auto element = elements.constBegin(); element != elements.constEnd(); ++element) {
        const OSTScreenDocument::LayoutEntry &entry = entries.value(element.key());
        const OSTElementFrame &frame = entry.element->frame();
        const OSTLayoutElement &engine = *element.value();
        if (engine.value(OSTLayoutElement::X) != frame.x || engine.value(OSTLayoutElement::Y) != frame.y
            || engine.value(OSTLayoutElement::Width) != frame.width
            || engine.value(OSTLayoutElement::Height) != frame.height)
            return QStringLiteral("the formulas of %1 differ").arg(element.key());
        if (engine.isAnchored() != frame.anchored)
            return QStringLiteral("the anchoring of %1 differs").arg(element.key());
        if (engine.zLayer() != entry.zLayer)
            return QStringLiteral("the layer of %1 differs").arg(element.key());
        const auto parent = engine.parent();
        const bool inGroup = parent && parent != layout.baseElement();
        if (inGroup != entry.group.has_value() || (inGroup && elements.value(*entry.group) != parent))
            return QStringLiteral("the group of %1 differs").arg(element.key());
    }
    return {};
}

} // namespace ostrel
