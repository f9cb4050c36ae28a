#pragma once

#include "experience/OSTExperiencePresenter.h"

namespace ostrel {

// The Qt Widgets toolkit as the experience toolkits see it: each request becomes a root
// presentation (OSTRootPresentation). It draws in a QApplication only, over a widget window, or in
// a window of its own when the host shows none; a QQuickWindow is left to the Qt Quick toolkit.
// GUI thread.
class OSTRootPresenter final : public OSTExperiencePresenter {
public:
    // The one presenter a library adds.
    static const std::shared_ptr<OSTRootPresenter> &shared();

    bool drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const override;
    std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) override;
    // Null without a QApplication.
    std::shared_ptr<Presentation> presentationWithType(int type) override;
};

} // namespace ostrel
