#pragma once

#include <QPointer>
#include <QWidget>

namespace ostrel {

class OSTLoadingIndicatorAnimation;

// The dimming layer with a spinning indicator that covers a view while a request runs. While it
// is presented it covers the whole view (following its size), takes every click and key, and
// keeps the focus from moving to the covered inputs.
//
// Lives on the GUI thread. Owned by its QObject parent; presenting makes it a child of the
// covered view, so it is destroyed with that view at the latest.
class OSTLoadingOverlay final : public QWidget {
    Q_OBJECT

public:
    explicit OSTLoadingOverlay(QWidget *parent = nullptr);

    // Covers `view` and fades in over a quarter second. Presenting on another view moves it.
    void presentOnView(QWidget *view);
    // Fades out, then stops covering the view. Does nothing when not presented.
    void dismiss();

    bool isPresented() const;
    // From 0 (invisible) to 1 (fully shown); animated by present and dismiss.
    qreal presence() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void finishDismissal();

    OSTLoadingIndicatorAnimation *const m_animation; // child
    QPointer<QWidget> m_focusBeforePresenting;
};

} // namespace ostrel
