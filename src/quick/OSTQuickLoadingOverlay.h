#pragma once

#include <QPointer>
#include <QQuickPaintedItem>

class QPropertyAnimation;
class QVariantAnimation;

namespace ostrel {

// The cover a screen drawn by Qt Quick shows while the host checks a social log-in: a dim over the
// whole screen with a turning spinner, faded in when presented and out when dismissed. While
// presented it takes the presses and keys meant for the screen, and the active focus, which goes
// back where it was once dismissed.
//
// Lives on the GUI thread; a child item of the screen it covers, whose size it follows.
class OSTQuickLoadingOverlay final : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(qreal presence READ presence WRITE setPresence)

public:
    static constexpr int fadeMilliseconds = 250;

    explicit OSTQuickLoadingOverlay(QQuickItem *screen);

    void present();
    void dismiss();
    bool isPresented() const { return m_presented; }
    // 0 invisible, 1 fully shown.
    qreal presence() const { return m_presence; }
    void setPresence(qreal presence);
    QPropertyAnimation *fade() const { return m_fade; }

    void paint(QPainter *painter) override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void followScreenSize();
    void finishDismissal();

    QPropertyAnimation *const m_fade; // child
    QVariantAnimation *const m_spin;  // child
    bool m_presented = false;
    qreal m_presence = 0;
    qreal m_spinnerAngle = 0;
    QPointer<QQuickItem> m_focusBeforePresenting;
};

} // namespace ostrel
