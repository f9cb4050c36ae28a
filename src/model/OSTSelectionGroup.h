#pragma once

#include "model/OSTValidationItem.h"
#include "screen/OSTSelectionGroupDescription.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QVariantList>

#include <memory>

namespace ostrel {

class OSTAction;
class OSTSelectionGroupMember;
class OSTSelectionGroup;

// Told of the taps in a selection group; the screen adopts it. Adopted by QObjects only
// (Q_INTERFACES).
class OSTSelectionGroupDelegate {
public:
    virtual ~OSTSelectionGroupDelegate() = default;
    // Every tap on a member button, with the group's action once enough buttons are selected.
    virtual void selectionGroupDidTapButton(OSTSelectionGroup &group, const QString &buttonName,
                                            const std::shared_ptr<const OSTAction> &action) = 0;
    // Announces, before the tap is reported, that the action is being passed on. The answer is
    // not consulted: the action is passed on whatever it is.
    virtual bool selectionGroupShouldHandleAction(OSTSelectionGroup &group, const std::shared_ptr<const OSTAction> &action) = 0;
};

} // namespace ostrel

Q_DECLARE_INTERFACE(ostrel::OSTSelectionGroupDelegate, "com.ostrelhq.Ostrel.OSTSelectionGroupDelegate")

namespace ostrel {

// A set of a screen's buttons acting as one input: single choice ("maximumSelection" 1, a new
// choice replaces the old) or multiple choice between "minimumSelection" and
// "maximumSelection" (0: no upper bound; a tap beyond the bound is refused, not swapped). It is
// not a view: the screen gives it its member buttons (setElements, buttons of either toolkit as
// OSTSelectionGroupMember), whose taps it then handles instead of anyone else. Its members with their values, its bounds and its action (passed on
// once at least the minimum is selected) come from its description (OSTSelectionGroupDescription).
//
// Its value is the list of the selected buttons' values, in the order of the buttons. It is
// valid when optional, without a minimum, or with at least the minimum selected; its error
// message may show only after it was valid once.
//
// Wiring in a screen: group->setElements(buttons named in "elements"); group->setDelegate(screen).
//
// Lives on the GUI thread; owned by its screen (Qt parent); keeps its buttons and delegate weakly.
class OSTSelectionGroup final : public QObject, public OSTValidationItem {
    Q_OBJECT

public:
    explicit OSTSelectionGroup(std::shared_ptr<const OSTSelectionGroupDescription> description,
                               QObject *parent = nullptr);
    ~OSTSelectionGroup() override;

    const QString &name() const { return m_description->key(); }
    const QStringList &elementKeys() const { return m_description->memberKeys(); }
    const QVariantList &values() const { return m_description->memberValues(); }
    // The member buttons that still exist.
    QList<OSTSelectionGroupMember *> elements() const;
    int maximumSelection() const { return m_description->maximumSelection(); }
    int minimumSelection() const { return m_description->minimumSelection(); }
    const std::shared_ptr<const OSTAction> &action() const { return m_description->action(); }

    // Takes over the buttons' taps: other receivers of their taps are disconnected.
    void setElements(const QList<OSTSelectionGroupMember *> &buttons);
    void setDelegate(QObject *delegate);
    int currentSelection() const;
    // The value the button with this element key stands for; null for an unknown key.
    QVariant valueForElementWithKey(const QString &key) const;
    void validate();
    // Handles a tap on a member button, as the button's own tap does.
    void elementTapped(OSTSelectionGroupMember *button);

    QVariant value() const override;
    // Selects exactly the buttons whose values the list holds (compared with their own type);
    // entries that name no value are skipped, and anything but a list selects nothing.
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_shouldShowErrorMessage; }

protected:
    void modelDidChange() override;

private:
    OSTSelectionGroupDelegate *delegate() const;

    const std::shared_ptr<const OSTSelectionGroupDescription> m_description;
    struct Element {
        QPointer<QObject> object; // the member's lifetime
        OSTSelectionGroupMember *member;
    };
    QList<Element> m_elements;
    bool m_shouldShowErrorMessage = false;
    QPointer<QObject> m_delegate;
};

} // namespace ostrel
