#pragma once

#include "experience/OSTExperiencePresenter.h"

#include <QPointer>

namespace ostrel {

class OSTRootController;

// One experience as the experience manager drives it: a root controller that shows an
// experience controller of the requested type.
//
// Lives on the GUI thread. Owns its root controller (deleted once the presentation is let go
// and any dismissal has faded out), except after takeView(): the root controller then lives as
// long as the view the caller took.
class OSTRootPresentation final : public OSTExperiencePresenter::Presentation {
public:
    // An experience to present as `settings` say.
    explicit OSTRootPresentation(const OSTExperienceSettings &settings);
    // An experience of `type` that can only be loaded.
    explicit OSTRootPresentation(int type);
    OSTRootPresentation(const OSTRootPresentation &) = delete;
    OSTRootPresentation &operator=(const OSTRootPresentation &) = delete;
    ~OSTRootPresentation() override;

    void presentWithCompletion(OSTExperiencePresenter::Completion completion) override;
    void dismissWithCompletion(OSTExperiencePresenter::Completion completion) override;
    void loadWithCompletion(OSTExperiencePresenter::Completion completion) override;
    QWidget *takeView() override;
    std::shared_ptr<const OSTScreen> currentScreen() const override;

    OSTRootController *rootController() const;

private:
    QPointer<OSTRootController> m_root;
    bool m_viewTaken = false;
};

} // namespace ostrel
