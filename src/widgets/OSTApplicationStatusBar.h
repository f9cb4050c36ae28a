#pragma once

#include "widgets/OSTViewController.h"

#include <QObject>

namespace ostrel {

// The application's status bar: shown or hidden, and its style. A desktop has none, so nothing
// draws it here; a host with a status bar of its own (an embedded shell, say) reads the values and
// follows statusBarChanged. Controllers that cover the host change it and put it back.
//
// One per process, living on the GUI thread.
class OSTApplicationStatusBar : public QObject {
    Q_OBJECT

public:
    enum class Visibility { Shown, Hidden };

    static OSTApplicationStatusBar &sharedStatusBar();

    Visibility visibility() const { return m_visibility; }
    OSTStatusBarStyle style() const { return m_style; }
    // Each emits statusBarChanged when the value changes.
    void setVisibility(Visibility visibility, OSTAnimation animation);
    void setStyle(OSTStatusBarStyle style, OSTAnimation animation);

Q_SIGNALS:
    void statusBarChanged(ostrel::OSTAnimation animation);

private:
    OSTApplicationStatusBar() = default;

    Visibility m_visibility = Visibility::Shown;
    OSTStatusBarStyle m_style = OSTStatusBarStyle::Default;
};

} // namespace ostrel
