#pragma once

#include "experience/OSTExperiencePresenter.h"

#include <QWidget>

#include <memory>
#include <utility>
#include <vector>

namespace ostrel::test {

// A presenter whose presentations finish only when the test calls their completions. Main
// thread only.
class OSTScriptedPresenter : public OSTExperiencePresenter {
public:
    class Presentation : public OSTExperiencePresenter::Presentation {
    public:
        void presentWithCompletion(Completion completion) override { presentCompletion = std::move(completion); }
        void dismissWithCompletion(Completion completion) override { dismissCompletion = std::move(completion); }
        void loadWithCompletion(Completion completion) override { loadCompletion = std::move(completion); }
        QWidget *takeView() override { return &view; }
        std::shared_ptr<const OSTScreen> currentScreen() const override { return screen; }

        Completion presentCompletion;
        Completion dismissCompletion;
        Completion loadCompletion;
        QWidget view;
        std::shared_ptr<const OSTScreen> screen;
    };

    bool drawsOver(const OSTExperienceSettings &, const QWindow *) const override { return true; }
    std::shared_ptr<OSTExperiencePresenter::Presentation>
    presentationWithSettings(const OSTExperienceSettings &settings) override
    {
        return presentationWithType(settings.experienceType);
    }
    std::shared_ptr<OSTExperiencePresenter::Presentation> presentationWithType(int type) override
    {
        requestedTypes.push_back(type);
        return last = std::make_shared<Presentation>();
    }

    // The latest presentation handed out, and the experience type of each, oldest first.
    std::shared_ptr<Presentation> last;
    std::vector<int> requestedTypes;
};

} // namespace ostrel::test
