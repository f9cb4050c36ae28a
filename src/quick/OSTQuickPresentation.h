#pragma once

#include "experience/OSTExperiencePresenter.h"

#include <QPointer>

namespace ostrel {

class OSTQuickCover;

// One experience as the experience manager drives it in a Qt Quick host: a cover over the host's
// QQuickWindow (OSTQuickCover) showing the experience the settings ask for.
//
// Lives on the GUI thread. The cover belongs to the window's scene once presented; a cover never
// presented, or still shown when the presentation is let go, is deleted with it (after a running
// fade out).
class OSTQuickPresentation final : public OSTExperiencePresenter::Presentation {
public:
    explicit OSTQuickPresentation(const OSTExperienceSettings &settings);
    OSTQuickPresentation(const OSTQuickPresentation &) = delete;
    OSTQuickPresentation &operator=(const OSTQuickPresentation &) = delete;
    ~OSTQuickPresentation() override;

    void presentWithCompletion(OSTExperiencePresenter::Completion completion) override;
    void dismissWithCompletion(OSTExperiencePresenter::Completion completion) override;
    // Loading hands out a widget; a Qt Quick host places an OstrelExperience item instead.
    void loadWithCompletion(OSTExperiencePresenter::Completion completion) override;
    QWidget *takeView() override;
    std::shared_ptr<const OSTScreen> currentScreen() const override;

    OSTQuickCover *cover() const;

private:
    const OSTExperienceSettings m_settings;
    QPointer<OSTQuickCover> m_cover;
};

} // namespace ostrel
