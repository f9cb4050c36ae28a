#pragma once

#include <memory>

namespace ostrel {

class OSTScreen;
class OSTScreenModel;

// What an experience model needs from whatever draws the experience: the Qt Widgets experience
// controller today, a Qt Quick one later. Screens are identified by their models; the view makes
// them, draws them and owns them. Every call comes on the GUI thread.
class OSTExperienceView {
public:
    OSTExperienceView() = default;
    OSTExperienceView(const OSTExperienceView &) = delete;
    OSTExperienceView &operator=(const OSTExperienceView &) = delete;
    virtual ~OSTExperienceView() = default;

    // Draws `screen` off stage and returns its model (owned by the view, kept until the screen is
    // popped); null when the screen cannot be drawn.
    virtual OSTScreenModel *makeScreen(const std::shared_ptr<const OSTScreen> &screen) = 0;
    // Brings a screen made by makeScreen on top, animated.
    virtual void pushScreen(OSTScreenModel &screen) = 0;
    // Takes the top screen away, animated, uncovering the one below.
    virtual void popScreen() = 0;
    // Takes away every screen above `screen`, animated.
    virtual void popToScreen(OSTScreenModel &screen) = 0;
    // Covers the whole experience while a check awaits its answer; the user can still close it.
    virtual void showLoadingOverlay() = 0;
    virtual void hideLoadingOverlay() = 0;
    // The experience is over: it leaves the screen.
    virtual void dismiss() = 0;
};

} // namespace ostrel
