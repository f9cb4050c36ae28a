#pragma once

#include <memory>

namespace ostrel {

class OSTAction;
class OSTButton;
class OSTScreenView;

// What a screen view tells the object that shows it (the screen controller). Every call comes on
// the GUI thread; the default bodies do nothing, so a delegate implements only what it needs.
//
// The screen view keeps its delegate weakly, through weakReference(), which expires as soon as
// this interface part of the delegate is destroyed.
class OSTScreenViewDelegate {
public:
    OSTScreenViewDelegate() = default;
    OSTScreenViewDelegate(const OSTScreenViewDelegate &) = delete;
    OSTScreenViewDelegate &operator=(const OSTScreenViewDelegate &) = delete;
    virtual ~OSTScreenViewDelegate() = default;

    // A tap on the page outside buttons, switches and inputs.
    virtual void screenViewDidTapScreen(OSTScreenView &) {}
    // A button was released inside, after its tap event was queued.
    virtual void screenViewDidPressButton(OSTScreenView &, OSTButton &) {}
    // An input's return key was tapped, after its event was queued.
    virtual void screenViewShouldGoToNextScreen(OSTScreenView &) {}
    // A selection group asks for its action to be carried out.
    virtual void screenViewShouldHandleAction(OSTScreenView &, const std::shared_ptr<const OSTAction> &) {}
    // The last required image finished loading, once the screen was built.
    virtual void screenViewDidFinishLoadingRequiredImages(OSTScreenView &) {}

    std::weak_ptr<OSTScreenViewDelegate> weakReference() const { return m_lifetime; }

private:
    // Shares the delegate's lifetime with the references taken from it; owns nothing.
    const std::shared_ptr<OSTScreenViewDelegate> m_lifetime{this, [](OSTScreenViewDelegate *) {}};
};

} // namespace ostrel
