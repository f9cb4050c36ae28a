#pragma once

#include "paint/OSTElementShadowPainter.h"

#include <QGraphicsEffect>
#include <QPointer>

#include <optional>

namespace ostrel {

class OSTBackgroundView;

// What an element view shows beyond its own painting: its opacity, applied to the view, its
// children and its shadow together, and its drop shadow (OSTElementShadowPainter), cast by the
// rounded outline of its container outside the view's rectangle and beneath it.
//
// Installed on the view with QWidget::setGraphicsEffect, which owns it; GUI thread only.
class OSTViewEffect final : public QGraphicsEffect {
    Q_OBJECT

public:
    // `outline` gives the corner radius of the shadow's shape; it is a child of the same view.
    explicit OSTViewEffect(const OSTBackgroundView *outline, QObject *parent = nullptr);

    // Gives `view` the effect its opacity and shadow need, with the shadow's shape from
    // `outline`, or takes it away when they need none. The view casts the shadow itself, so it
    // lies outside the view's box and nothing but the view's parent clips it.
    static void applyTo(QWidget &view, const OSTBackgroundView *outline, qreal opacity,
                        const std::optional<OSTShadow> &shadow);

    void setOpacity(qreal opacity);
    void setShadow(const std::optional<OSTShadow> &shadow);

    QRectF boundingRectFor(const QRectF &sourceRect) const override;

protected:
    void draw(QPainter *painter) override;

private:
    void paintShadow(QPainter &painter);
    void drawTranslucent(QPainter &painter, const QPixmap &source, QPoint sourceOffset);

    QPointer<const OSTBackgroundView> m_outline;
    qreal m_opacity = 1;
    std::optional<OSTElementShadowPainter> m_shadow;
};

} // namespace ostrel
