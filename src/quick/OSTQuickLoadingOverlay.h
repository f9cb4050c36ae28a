#pragma once

#include <QPointer>
#include <QQuickPaintedItem>

class QPropertyAnimation;

namespace ostrel {

class OSTLoadingIndicatorAnimation;

// The cover a screen drawn by Qt Quick shows while the host checks a social log-in: a dim over the
// whole screen with a turning spinner, faded in when presented and out when dismissed. While
// presented it takes the presses and keys meant for the screen, and the active focus, which goes
// back where it was once dismissed.
//
// Lives on the GUI thread; a child item of the screen it covers, whose size it follows.
class OSTQuickLoadingOverlay final : public QQuickPaintedItem {
    Q_OBJECT

public:
    explicit OSTQuickLoadingOverlay(QQuickItem *screen);

    void present();
    void dismiss();
    bool isPresented() const;
    // 0 invisible, 1 fully shown.
    qreal presence() const;
    QPropertyAnimation *fade() const;

    void paint(QPainter *painter) override;

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void followScreenSize();
    void finishDismissal();

    OSTLoadingIndicatorAnimation *const m_animation; // child
    QPointer<QQuickItem> m_focusBeforePresenting;
};

} // namespace ostrel
