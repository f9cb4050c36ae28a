#pragma once

#include "AutoplayToolkit.h"

#include <QPointer>
#include <QWidget>

namespace ostrel::demo {

// The autoplay walk's hands in a Qt Widgets host: elements are the widgets named by their element
// keys anywhere under the host window (the experience's views are its children while it covers
// it); the picker's wheel is the list it opens.
//
// Lives on the GUI thread; holds the host window weakly (the host owns it).
class WidgetsAutoplayToolkit final : public AutoplayToolkit {
public:
    explicit WidgetsAutoplayToolkit(QWidget *window);

    void activateWindow() override;
    bool tap(const QString &elementKey) override;
    bool typeInto(const QString &elementKey, const QString &text) override;
    bool pressKeyInPicker(const QString &pickerKey, Qt::Key key) override;
    QImage grabScreen() override;

private:
    // The newest visible widget with that name: screens that slid away may still hold one.
    QWidget *visibleElement(const QString &elementKey) const;

    QPointer<QWidget> m_window;
};

} // namespace ostrel::demo
