#pragma once

#include <QImage>
#include <QString>

namespace ostrel::demo {

// What the autoplay walk does with the toolkit that draws the experience: finding the visible
// element with an element key (the object name of the SDK's widgets and items, and of the host's
// buttons), tapping it, typing into it, pressing keys in a picker and taking a picture of the
// host's window. Every call answers at once; false means "not possible yet" (the element is not on
// screen, or has not taken the focus yet), and the walk tries again on its next tick.
//
// Implementations act on the host window they were made for, on the GUI thread.
class AutoplayToolkit {
public:
    virtual ~AutoplayToolkit() = default;

    // Makes the host window the one that receives key presses.
    virtual void activateWindow() = 0;
    // Clicks the centre of the element through the window, as a person does, so the press reaches
    // whatever lies on top at that point.
    virtual bool tap(const QString &elementKey) = 0;
    // Replaces the text of a text field: it takes the focus, everything in it is selected and the
    // text typed over it.
    virtual bool typeInto(const QString &elementKey, const QString &text) = 0;
    // Presses a key in a picker once its wheel is open.
    virtual bool pressKeyInPicker(const QString &pickerKey, Qt::Key key) = 0;
    // The host window as it looks now, experience included.
    virtual QImage grabScreen() = 0;
};

} // namespace ostrel::demo
