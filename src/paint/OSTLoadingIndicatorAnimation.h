#pragma once

#include <QObject>

class QPainter;
class QPropertyAnimation;
class QSizeF;
class QVariantAnimation;

namespace ostrel {

// What a loading overlay shows over time, whichever toolkit draws it: the dim's presence, faded in
// over a quarter second when shown and out when hidden, and the spinner's angle, one turn a second
// while shown. The overlay repaints on changed() and stops covering on faded().
//
// Lives on the GUI thread; owned by the overlay that draws it (its QObject parent).
class OSTLoadingIndicatorAnimation final : public QObject {
    Q_OBJECT
    Q_PROPERTY(qreal presence READ presence WRITE setPresence)

public:
    static constexpr int fadeMilliseconds = 250;

    explicit OSTLoadingIndicatorAnimation(QObject *parent);

    // Fades in from nothing and spins; shown again while fading out, it fades in again.
    void show();
    // Fades out, then stops spinning and reports faded(). Does nothing when not shown.
    void hide();
    bool isShown() const { return m_shown; }

    // 0 invisible, 1 fully shown.
    qreal presence() const { return m_presence; }
    void setPresence(qreal presence);
    // The fade in or out, for whoever must end it at once.
    QPropertyAnimation *fade() const { return m_fade; }

    // The dim and the spinner as they are now, over `size`.
    void paint(QPainter &painter, const QSizeF &size) const;

Q_SIGNALS:
    void changed();
    // Faded out after hide(), unless shown again meanwhile.
    void faded();

private:
    void finishHiding();

    QPropertyAnimation *const m_fade; // child
    QVariantAnimation *const m_spin;  // child
    bool m_shown = false;
    qreal m_presence = 0;
    qreal m_angle = 0;
};

} // namespace ostrel
