#pragma once

#include <memory>

namespace ostrel {

class OSTValidationGroupModel;

// The screen view's side of validation: it shows the screen's error message, which it reads from
// its group model's stateSensitiveErrorMessage() whenever validityChanged() is called.
//
// A plain interface so that the screen widget can adopt it next to its Qt base:
//     class OSTScreenView : public QWidget, public OSTValidationGroup
//
// Ownership: the view and its group model refer to each other weakly. The model lives with the
// flow's validation manager; the view lives with its screen controller and may be destroyed and
// built again while the model lives on. The model reaches the view only through weakReference(),
// which expires as soon as this interface part of the view is destroyed.
//
// Thread: GUI thread only.
class OSTValidationGroup {
public:
    OSTValidationGroup() = default;
    OSTValidationGroup(const OSTValidationGroup &) = delete;
    OSTValidationGroup &operator=(const OSTValidationGroup &) = delete;
    virtual ~OSTValidationGroup();

    // The group model, or null when none was set or it no longer exists.
    std::shared_ptr<OSTValidationGroupModel> model() const;
    // Keeps the model weakly.
    void setModel(const std::shared_ptr<OSTValidationGroupModel> &model);

    // The screen's validity or its error message may have changed.
    virtual void validityChanged() = 0;

    // A reference that expires when this view is destroyed. The pointer it holds owns nothing:
    // lock it only for the duration of a call, never keep the locked pointer.
    std::weak_ptr<OSTValidationGroup> weakReference() const { return m_lifetime; }

private:
    std::weak_ptr<OSTValidationGroupModel> m_model;
    // Shares this view's lifetime with the weak references taken from it; the deleter does
    // nothing because the view is owned elsewhere (by its Qt parent or controller).
    const std::shared_ptr<OSTValidationGroup> m_lifetime{this, [](OSTValidationGroup *) {}};
};

} // namespace ostrel
