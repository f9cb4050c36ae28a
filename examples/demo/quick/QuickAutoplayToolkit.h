#pragma once

#include "AutoplayToolkit.h"

#include <QPointer>
#include <QQuickWindow>

class QQuickItem;

namespace ostrel::demo {

// The autoplay walk's hands in a Qt Quick host: elements are the items named by their element keys
// in the host window's scene (the experience's items while it covers the window, the host's own
// buttons). Key presses go to the window, which hands them to the item with the active focus.
//
// Lives on the GUI thread; holds the host window weakly (the QML engine owns it).
class QuickAutoplayToolkit final : public AutoplayToolkit {
public:
    explicit QuickAutoplayToolkit(QQuickWindow *window);

    void activateWindow() override;
    bool tap(const QString &elementKey) override;
    bool typeInto(const QString &elementKey, const QString &text) override;
    bool pressKeyInPicker(const QString &pickerKey, Qt::Key key) override;
    QImage grabScreen() override;

private:
    // The top-most item with that name that is visible and whose centre lies in the window, outside
    // no clipping ancestor: screens that slid away may still hold one. Of an item and the items
    // inside it, the outer one.
    QQuickItem *visibleElement(const QString &elementKey) const;
    QQuickItem *topmostVisibleElementIn(QQuickItem *item, const QString &elementKey) const;
    bool isEffectivelyInsideWindow(const QQuickItem &item) const;
    // Whether the item, or an item inside it, has the window's active focus.
    bool hasFocusWithin(const QQuickItem &item) const;

    QPointer<QQuickWindow> m_window;
};

} // namespace ostrel::demo
