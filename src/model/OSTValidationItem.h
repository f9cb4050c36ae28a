#pragma once

#include <QVariant>

#include <memory>

namespace ostrel {

class OSTValidationItemModel;

// An input that takes part in validation: text fields, pickers, switches, toggle and image-upload
// buttons, selection groups. The input judges its own validity by its own rule and writes it into
// its item model (setValid), and reports each change of value (valueChanged).
//
// A plain interface so that a widget can adopt it next to its Qt base:
//     class OSTTextField : public QLineEdit, public OSTValidationItem
//
// Ownership: the input and its item model refer to each other weakly. The model lives with the
// flow's validation manager; the input lives with its screen view and may be destroyed and built
// again while the model lives on. The model reaches the input only through weakReference(), which
// expires as soon as this interface part of the input is destroyed (before the widget's own
// teardown), so a model never calls into a destroyed input.
//
// Thread: GUI thread only.
class OSTValidationItem {
public:
    OSTValidationItem() = default;
    OSTValidationItem(const OSTValidationItem &) = delete;
    OSTValidationItem &operator=(const OSTValidationItem &) = delete;
    virtual ~OSTValidationItem();

    // The item model, or null when none was set or it no longer exists.
    std::shared_ptr<OSTValidationItemModel> model() const;
    // Keeps the model weakly, then lets the input react (modelDidChange).
    void setModel(const std::shared_ptr<OSTValidationItemModel> &model);

    // The input's current value, null when it has none.
    virtual QVariant value() const = 0;
    // Restores a value that the user entered earlier; values of a kind the input does not take
    // are ignored.
    virtual void setValue(const QVariant &value) = 0;
    // Whether the input lets its error message be shown now (a text field hides it while the user
    // is typing).
    virtual bool shouldShowErrorMessage() const = 0;
    // Called when the model's validity changed and when the input is attached; inputs that show
    // their state override it.
    virtual void validityChanged() {}

    // A reference that expires when this input is destroyed. The pointer it holds owns nothing:
    // lock it only for the duration of a call, never keep the locked pointer.
    std::weak_ptr<OSTValidationItem> weakReference() const { return m_lifetime; }

protected:
    // Called by setModel after the model is stored. Inputs that judge themselves as soon as they
    // have a model (pickers, switches, toggle buttons) override it.
    virtual void modelDidChange() {}

private:
    std::weak_ptr<OSTValidationItemModel> m_model;
    // Shares this input's lifetime with the weak references taken from it; the deleter does
    // nothing because the input is owned elsewhere (by its Qt parent).
    const std::shared_ptr<OSTValidationItem> m_lifetime{this, [](OSTValidationItem *) {}};
};

} // namespace ostrel
