#pragma once

#include <QPointer>
#include <QWidget>

class QPropertyAnimation;
class QVariantAnimation;

namespace ostrel {

// The dimming layer with a spinning indicator that covers a view while a request runs. While it
// is presented it covers the whole view (following its size), takes every click and key, and
// keeps the focus from moving to the covered inputs.
//
// Lives on the GUI thread. Owned by its QObject parent; presenting makes it a child of the
// covered view, so it is destroyed with that view at the latest.
class OSTLoadingOverlay final : public QWidget {
    Q_OBJECT
    Q_PROPERTY(qreal presence READ presence WRITE setPresence)

public:
    explicit OSTLoadingOverlay(QWidget *parent = nullptr);

    // Covers `view` and fades in over a quarter second. Presenting on another view moves it.
    void presentOnView(QWidget *view);
    // Fades out, then stops covering the view. Does nothing when not presented.
    void dismiss();

    bool isPresented() const { return m_presented; }
    // From 0 (invisible) to 1 (fully shown); animated by present and dismiss.
    qreal presence() const { return m_presence; }
    void setPresence(qreal presence);

    static constexpr int fadeMilliseconds = 250;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void finishDismissal();

    QPropertyAnimation *const m_fade;       // child
    QVariantAnimation *const m_spin;        // child; turns the indicator while presented
    QPointer<QWidget> m_focusBeforePresenting;
    qreal m_presence = 0;
    qreal m_indicatorAngle = 0;
    bool m_presented = false;
};

} // namespace ostrel
