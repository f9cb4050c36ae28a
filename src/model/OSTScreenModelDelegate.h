#pragma once

#include <QString>

#include <memory>

namespace ostrel {

class OSTScreenModel;

// Where a screen model sends the navigation its screen asks for (the experience model). Every
// call comes on the GUI thread. Kept weakly by the screen model, through weakReference().
class OSTScreenModelDelegate {
public:
    OSTScreenModelDelegate() = default;
    OSTScreenModelDelegate(const OSTScreenModelDelegate &) = delete;
    OSTScreenModelDelegate &operator=(const OSTScreenModelDelegate &) = delete;
    virtual ~OSTScreenModelDelegate() = default;

    virtual void screenModelShouldClose(OSTScreenModel &screen) = 0;
    virtual void screenModelShouldGoToNextScreen(OSTScreenModel &screen) = 0;
    virtual void screenModelShouldGoToPreviousScreen(OSTScreenModel &screen) = 0;
    virtual void screenModelShouldStartFlow(OSTScreenModel &screen, const QString &flowKey) = 0;

    std::weak_ptr<OSTScreenModelDelegate> weakReference() const { return m_lifetime; }

private:
    // Shares the delegate's lifetime with the references taken from it; owns nothing.
    const std::shared_ptr<OSTScreenModelDelegate> m_lifetime{this, [](OSTScreenModelDelegate *) {}};
};

} // namespace ostrel
