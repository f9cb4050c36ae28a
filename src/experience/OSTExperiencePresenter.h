#pragma once

#include <ostrel/OSTExperienceSettings.h>

#include <functional>
#include <memory>

class QWidget;
class QWindow;

namespace ostrel {

class OSTScreen;

// Where the experience manager's present, dismiss and load requests go: each toolkit above (Qt
// Widgets, Qt Quick) implements it and adds itself to OSTExperienceToolkits, which start-up sets on
// the manager. GUI thread.
class OSTExperiencePresenter {
public:
    using Completion = std::function<void(bool success)>;

    // One experience shown over the host (or prepared to be): a root controller as the experience
    // manager drives it. Each completion is called exactly once, possibly later, and then let go.
    class Presentation {
    public:
        virtual ~Presentation() = default;
        // Waits for the launch, finds the experience's flow and shows its first screen; false when
        // there is nothing to show.
        virtual void presentWithCompletion(Completion completion) = 0;
        virtual void dismissWithCompletion(Completion completion) = 0;
        // Prepares the experience without showing it.
        virtual void loadWithCompletion(Completion completion) = 0;
        // After a successful load: the prepared experience. The caller takes the widget; the
        // presentation stays alive as long as the widget does.
        virtual QWidget *takeView() = 0;
        // The screen on display; nullptr when none.
        virtual std::shared_ptr<const OSTScreen> currentScreen() const = 0;
    };

    virtual ~OSTExperiencePresenter() = default;

    // Whether this toolkit draws an experience presented with `settings` over `window`, the window
    // to cover (null when the host shows none).
    virtual bool drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const = 0;

    // A presentation of the experience `settings` describe, not yet shown.
    virtual std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) = 0;
    // A presentation of experience `type` with default settings, for loading as a widget; null
    // when this toolkit draws no widgets.
    virtual std::shared_ptr<Presentation> presentationWithType(int type) = 0;
};

} // namespace ostrel
