#include "widgets/OSTApplicationStatusBar.h"

namespace ostrel {

OSTApplicationStatusBar &OSTApplicationStatusBar::sharedStatusBar()
{
    static OSTApplicationStatusBar *statusBar = new OSTApplicationStatusBar;
    return *statusBar;
}

void OSTApplicationStatusBar::setVisibility(Visibility visibility, OSTAnimation animation)
{
    if (visibility == m_visibility)
        return;
    m_visibility = visibility;
    Q_EMIT statusBarChanged(animation);
}

void OSTApplicationStatusBar::setStyle(OSTStatusBarStyle style, OSTAnimation animation)
{
    if (style == m_style)
        return;
    m_style = style;
    Q_EMIT statusBarChanged(animation);
}

} // namespace ostrel
