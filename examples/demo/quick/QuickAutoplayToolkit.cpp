#include "QuickAutoplayToolkit.h"

#include <QQuickItem>
#include <QTest>

#include <algorithm>

namespace ostrel::demo {

namespace {

QPointF centreInScene(const QQuickItem &item)
{
    return item.mapToScene(QPointF(item.width() / 2, item.height() / 2));
}

} // namespace

QuickAutoplayToolkit::QuickAutoplayToolkit(QQuickWindow *window)
    : m_window(window)
{
}

void QuickAutoplayToolkit::activateWindow()
{
    m_window->requestActivate();
}

bool QuickAutoplayToolkit::tap(const QString &elementKey)
{
    const QQuickItem *element = visibleElement(elementKey);
    if (!element)
        return false;
    QTest::mouseClick(m_window, Qt::LeftButton, {}, centreInScene(*element).toPoint());
    return true;
}

bool QuickAutoplayToolkit::typeInto(const QString &elementKey, const QString &text)
{
    QQuickItem *field = visibleElement(elementKey);
    if (!field)
        return false;
    if (!hasFocusWithin(*field))
        field->forceActiveFocus(Qt::MouseFocusReason);
    if (!hasFocusWithin(*field))
        return false;
    QTest::keyClick(m_window, Qt::Key_A, Qt::ControlModifier);
    // The window has no keyClicks of its own: one character at a time, as typed.
    for (const QChar character : text)
        QTest::keyClick(m_window, character.toLatin1());
    return true;
}

bool QuickAutoplayToolkit::pressKeyInPicker(const QString &pickerKey, Qt::Key key)
{
    const QQuickItem *picker = visibleElement(pickerKey);
    if (!picker || !hasFocusWithin(*picker))
        return false;
    QTest::keyClick(m_window, key);
    return true;
}

QImage QuickAutoplayToolkit::grabScreen()
{
    return m_window->grabWindow();
}

QQuickItem *QuickAutoplayToolkit::visibleElement(const QString &elementKey) const
{
    return topmostVisibleElementIn(m_window->contentItem(), elementKey);
}

QQuickItem *QuickAutoplayToolkit::topmostVisibleElementIn(QQuickItem *item, const QString &elementKey) const
{
    if (!item->isVisible())
        return nullptr;
    // An element's own parts (a picker's label, say) may carry its key too: the element is the
    // outermost item with it.
    if (item->objectName() == elementKey && isEffectivelyInsideWindow(*item))
        return item;
    // Children are painted by z, then in the order they were added: the last one is on top.
    QList<QQuickItem *> children = item->childItems();
    std::ranges::stable_sort(children, std::ranges::less(), &QQuickItem::z);
    for (auto child = children.crbegin(); child != children.crend(); ++child) {
        if (QQuickItem *found = topmostVisibleElementIn(*child, elementKey))
            return found;
    }
    return nullptr;
}

bool QuickAutoplayToolkit::isEffectivelyInsideWindow(const QQuickItem &item) const
{
    const QPointF centre = centreInScene(item);
    if (!QRectF(QPointF(), m_window->size()).contains(centre))
        return false;
    for (const QQuickItem *ancestor = item.parentItem(); ancestor; ancestor = ancestor->parentItem()) {
        if (ancestor->clip() && !ancestor->mapRectToScene(ancestor->boundingRect()).contains(centre))
            return false;
    }
    return true;
}

bool QuickAutoplayToolkit::hasFocusWithin(const QQuickItem &item) const
{
    const QQuickItem *focused = m_window->activeFocusItem();
    return focused && (focused == &item || item.isAncestorOf(focused));
}

} // namespace ostrel::demo
