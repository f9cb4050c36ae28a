#pragma once

#include <QString>

#include <memory>

namespace ostrel {

class OSTScreenController;

// Where a screen controller sends the navigation its screen asks for (the experience controller).
// Every call comes on the GUI thread. Kept weakly by the controller, through weakReference().
class OSTScreenControllerDelegate {
public:
    OSTScreenControllerDelegate() = default;
    OSTScreenControllerDelegate(const OSTScreenControllerDelegate &) = delete;
    OSTScreenControllerDelegate &operator=(const OSTScreenControllerDelegate &) = delete;
    virtual ~OSTScreenControllerDelegate() = default;

    virtual void screenControllerShouldClose(OSTScreenController &controller) = 0;
    virtual void screenControllerShouldGoToNextScreen(OSTScreenController &controller) = 0;
    virtual void screenControllerShouldGoToPreviousScreen(OSTScreenController &controller) = 0;
    virtual void screenControllerShouldStartFlow(OSTScreenController &controller, const QString &flowKey) = 0;

    std::weak_ptr<OSTScreenControllerDelegate> weakReference() const { return m_lifetime; }

private:
    // Shares the delegate's lifetime with the references taken from it; owns nothing.
    const std::shared_ptr<OSTScreenControllerDelegate> m_lifetime{this, [](OSTScreenControllerDelegate *) {}};
};

} // namespace ostrel
