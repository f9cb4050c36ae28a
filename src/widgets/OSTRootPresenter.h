#pragma once

#include "experience/OSTExperiencePresenter.h"

namespace ostrel {

// What start-up gives the experience manager: each request becomes a root presentation
// (OSTRootPresentation). GUI thread.
class OSTRootPresenter final : public OSTExperiencePresenter {
public:
    std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) override;
    std::shared_ptr<Presentation> presentationWithType(int type) override;
};

} // namespace ostrel
