#pragma once

#include "experience/OSTExperiencePresenter.h"

#include <QWidget>

#include <memory>
#include <vector>

namespace ostrel::test {

// A presenter whose presentations finish only when the test calls their completions. Main
// thread only.
class OSTScriptedPresenter : public OSTExperiencePresenter {
public:
    class Presentation : public OSTExperiencePresenter::Presentation {
    public:
        void presentWithCompletion(Completion completion) override;
        void dismissWithCompletion(Completion completion) override;
        void loadWithCompletion(Completion completion) override;
        QWidget *takeView() override;
        std::shared_ptr<const OSTScreen> currentScreen() const override;

        Completion presentCompletion;
        Completion dismissCompletion;
        Completion loadCompletion;
        QWidget view;
        std::shared_ptr<const OSTScreen> screen;
    };

    std::shared_ptr<OSTExperiencePresenter::Presentation>
    presentationWithSettings(const OSTExperienceSettings &settings) override;
    std::shared_ptr<OSTExperiencePresenter::Presentation> presentationWithType(int type) override;

    // The latest presentation handed out, and the experience type of each, oldest first.
    std::shared_ptr<Presentation> last;
    std::vector<int> requestedTypes;
};

} // namespace ostrel::test
