#include "WidgetsAutoplayToolkit.h"

#include <QListWidget>
#include <QTest>
#include <QWindow>

namespace ostrel::demo {

WidgetsAutoplayToolkit::WidgetsAutoplayToolkit(QWidget *window)
    : m_window(window)
{
}

void WidgetsAutoplayToolkit::activateWindow()
{
    m_window->activateWindow();
}

bool WidgetsAutoplayToolkit::tap(const QString &elementKey)
{
    QWidget *element = visibleElement(elementKey);
    if (!element)
        return false;
    const QPoint centre = element->mapTo(m_window, element->rect().center());
    QTest::mouseClick(m_window->windowHandle(), Qt::LeftButton, {}, centre);
    return true;
}

bool WidgetsAutoplayToolkit::typeInto(const QString &elementKey, const QString &text)
{
    QWidget *field = visibleElement(elementKey);
    if (!field)
        return false;
    if (!field->hasFocus()) {
        // A tap gives it the focus; the typing follows on the walk's next tick.
        tap(elementKey);
        return false;
    }
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
    return true;
}

bool WidgetsAutoplayToolkit::pressKeyInPicker(const QString &pickerKey, Qt::Key key)
{
    QWidget *picker = visibleElement(pickerKey);
    auto *wheel = picker ? picker->findChild<QListWidget *>() : nullptr;
    if (!wheel || !wheel->isVisible())
        return false;
    QTest::keyClick(wheel, key);
    return true;
}

QImage WidgetsAutoplayToolkit::grabScreen()
{
    return m_window->grab().toImage();
}

QWidget *WidgetsAutoplayToolkit::visibleElement(const QString &elementKey) const
{
    const QList<QWidget *> candidates = m_window->findChildren<QWidget *>(elementKey);
    for (auto candidate = candidates.crbegin(); candidate != candidates.crend(); ++candidate) {
        if ((*candidate)->isVisible())
            return *candidate;
    }
    return nullptr;
}

} // namespace ostrel::demo
