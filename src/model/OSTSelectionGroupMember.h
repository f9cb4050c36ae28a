#pragma once

#include <QString>

#include <functional>

class QObject;

namespace ostrel {

// A button of a selection group, whichever toolkit draws it: the group reads and sets whether it
// is selected and takes over its taps. Adopted by QObjects only, next to their button base.
class OSTSelectionGroupMember {
public:
    OSTSelectionGroupMember() = default;
    OSTSelectionGroupMember(const OSTSelectionGroupMember &) = delete;
    OSTSelectionGroupMember &operator=(const OSTSelectionGroupMember &) = delete;
    virtual ~OSTSelectionGroupMember() = default;

    // The button's element key.
    virtual const QString &memberKey() const = 0;
    virtual bool isMemberSelected() const = 0;
    virtual void setMemberSelected(bool selected) = 0;
    // The object the member is, whose destruction takes it out of its group.
    virtual QObject &memberObject() = 0;
    // The button becomes selectable and hands every later tap to `tapped` alone, called on
    // `group`'s behalf: other receivers of its taps are cut off, and a tap leaves the selection
    // to the group.
    virtual void joinGroup(QObject &group, std::function<void()> tapped) = 0;
};

} // namespace ostrel
