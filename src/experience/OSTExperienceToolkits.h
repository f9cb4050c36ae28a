#pragma once

#include "experience/OSTExperiencePresenter.h"

#include <memory>
#include <vector>

namespace ostrel {

// The toolkits this application can draw experiences with, as one presenter: each request goes to
// the first toolkit that draws over the window to cover (the one the settings name, else the host's
// front-most window). A toolkit library adds itself when it is loaded (the host links it; see the
// toolkits' import sources), so the SDK's core never names a toolkit.
//
// GUI thread only, except add(), which may run before the application object exists.
class OSTExperienceToolkits final : public OSTExperiencePresenter {
public:
    // The one set, made on first use.
    static const std::shared_ptr<OSTExperienceToolkits> &shared();

    // Adds a toolkit; adding the same one twice keeps one.
    void add(std::shared_ptr<OSTExperiencePresenter> toolkit);
    bool isEmpty() const { return m_toolkits.empty(); }

    // The window an experience with `settings` would cover: the host's QQuickWindow when the
    // settings name one, else the focused window, else the last shown top-level window; null when
    // the host shows none. A widget the settings name is resolved by its toolkit, not here.
    static QWindow *windowToCover(const OSTExperienceSettings &settings);

    bool drawsOver(const OSTExperienceSettings &settings, const QWindow *window) const override;
    // Null, with a warning that says why, when no toolkit draws over the window to cover.
    std::shared_ptr<Presentation> presentationWithSettings(const OSTExperienceSettings &settings) override;
    // The first toolkit that loads experiences as widgets; null, with a warning, when none does.
    std::shared_ptr<Presentation> presentationWithType(int type) override;

private:
    void warnNothingDrawsOver(const QWindow *window) const;

    std::vector<std::shared_ptr<OSTExperiencePresenter>> m_toolkits;
};

} // namespace ostrel
