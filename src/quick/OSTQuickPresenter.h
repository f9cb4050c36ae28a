#pragma once

#include "experience/OSTExperiencePresenter.h"

namespace ostrel {

// The Qt Quick toolkit as the experience toolkits see it: it draws over a QQuickWindow, in a
// QGuiApplication or a QApplication, each presentation a cover in that window's scene
// (OSTQuickPresentation). It loads no widgets. GUI thread.
class OSTQuickPresenter final : public OSTExperiencePresenter {
public:
    // The one presenter a library adds.
    static const std::shared_ptr<OSTQuickPresenter> &shared();

    bool drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const override;
    std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) override;
    // Always null: loading hands out a widget.
    std::shared_ptr<Presentation> presentationWithType(int type) override;
};

} // namespace ostrel
