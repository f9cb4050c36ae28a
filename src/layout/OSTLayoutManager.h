#pragma once

#include "layout/OSTLayoutCompiledFormulas.h"
#include "layout/OSTLayoutElement.h"
#include "layout/OSTLayoutKeyIndex.h"
#include "screen/OSTElementFrame.h"

#include <QMap>
#include <QRectF>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace ostrel {

class OSTScreenDocument;

// The layout engine of one screen: builds the layout elements of a screen document's layout table,
// resolves their formulas into numbers and answers frame queries by element key. Built, used
// and destroyed on one thread (the GUI thread).
//
// Resolution gives exactly the results of resolving in full passes over the table until every
// element is resolved, with one deliberate difference: where those passes would run without end (a
// reference cycle, a self-reference, a reference to an attribute name other than the four, a
// negative result, a formula that is not arithmetic), resolution stops at the first pass in which
// no attribute string changes and resolveLayout() returns false.
class OSTLayoutManager {
public:
    using ElementTable = QMap<QString, std::shared_ptr<OSTLayoutElement>>;

    // With the platform's screen (screenBounds()) and status bar height.
    explicit OSTLayoutManager(const OSTScreenDocument &document);
    // With the screen bounds and status bar height given. The bounds' width and height are
    // used as given (screenBounds() puts them in portrait order).
    // The document is not kept.
    OSTLayoutManager(const OSTScreenDocument &document, const QRectF &screenBounds, double statusBarHeight);
    ~OSTLayoutManager();

    OSTLayoutManager(const OSTLayoutManager &) = delete;
    OSTLayoutManager &operator=(const OSTLayoutManager &) = delete;

    // Replaces the four frame attributes of the element `key` with the formulas of `frame`,
    // unless the element is unknown or already resolved.
    void updateLayout(const OSTElementFrame &frame, const QString &key);

    // Resolves every element; true when all are resolved. When some stay unresolved, logs one
    // debug line naming one of them and returns false.
    bool resolveLayout();

    // The element's frame; the zero rectangle for an unknown key or an unresolved element.
    QRectF frameForKey(const QString &key) const;

    // The platform's main screen bounds with width and height in portrait order (width the
    // smaller), origin as reported.
    static QRectF screenBounds();

    // The screen: "width" and "height" only, formatted with "%.2f". Not in elements().
    const std::shared_ptr<OSTLayoutElement> &baseElement() const { return m_baseElement; }
    // Every element of the categories and every group, by key; iterated in key order, which is
    // the order of the resolution passes.
    const ElementTable &elements() const { return m_elements; }
    // The keys of the anchored elements, in key order.
    const QStringList &anchoredElementKeys() const { return m_anchoredElementKeys; }
    // All keys, by ascending zLayer; keys of equal layer in key order.
    const QStringList &elementKeysSortedByZLayer() const { return m_elementKeysSortedByZLayer; }

    double statusBarHeight() const { return m_statusBarHeight; }

private:
    void build(const OSTScreenDocument &document, const QRectF &screenBounds);
    void compileFormulas(int position);
    int stuckElementPosition() const;
    void logStuckElement(int position) const;
    static bool waitsForParent(const OSTLayoutElement &element);

    std::shared_ptr<OSTLayoutElement> m_baseElement;
    ElementTable m_elements;
    QStringList m_anchoredElementKeys;
    QStringList m_elementKeysSortedByZLayer;
    double m_statusBarHeight = 0;
    QString m_statusBarText;

    // The table in iteration order (key order), and its keys.
    std::vector<OSTLayoutElement *> m_table;
    QStringList m_tableKeys;
    std::unique_ptr<OSTLayoutKeyIndex> m_keyIndex;
    // The formulas compiled when built (and updated); the first resolution uses them, later
    // ones take the string path over what it left.
    std::unique_ptr<OSTLayoutCompiledFormulas> m_formulas;
    bool m_formulasUsed = false;
};

} // namespace ostrel
