#pragma once

#include "paint/OSTElementShadowPainter.h"

#include <QQuickPaintedItem>

namespace ostrel {

// The object shadow an element item casts: a child item of the caster, beneath it (a negative z),
// as large as the caster plus the shadow's margins, since a painted item cannot draw outside its
// bounds. It follows the caster's size and paints the shadow of the caster's box.
//
// Lives on the GUI thread; a child item of its caster.
class OSTQuickShadow final : public QQuickPaintedItem {
    Q_OBJECT

public:
    OSTQuickShadow(const OSTShadow &shadow, QQuickItem *caster);

    const OSTShadow &shadow() const { return m_shadowPainter.shadow(); }
    // The corners of the caster's box, as OSTBoxPainter::cornerRadius gives them.
    void setCornerRadius(qreal radius);

    void paint(QPainter *painter) override;

private:
    void followCaster();

    OSTElementShadowPainter m_shadowPainter;
    qreal m_cornerRadius = 0;
};

} // namespace ostrel
