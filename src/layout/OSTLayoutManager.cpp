#include "layout/OSTLayoutManager.h"

#include "core/OSTLogging.h"
#include "layout/OSTLayoutNumbers.h"
#include "layout/OSTLayoutPassScheduler.h"
#include "platform/OSTDeviceScreen.h"
#include "screen/OSTScreenDocument.h"

#include <algorithm>

namespace ostrel {

namespace {

using Attribute = OSTLayoutElement::Attribute;

QString shortened(const QString &text)
{
    constexpr qsizetype limit = 120;
    return text.size() <= limit ? text : text.left(limit) + QStringLiteral("...");
}

} // namespace

OSTLayoutManager::OSTLayoutManager(const OSTScreenDocument &document)
    : OSTLayoutManager(document, screenBounds(), OSTDeviceScreen::statusBarHeight())
{
}

OSTLayoutManager::OSTLayoutManager(const OSTScreenDocument &document, const QRectF &screenBounds,
                                   double statusBarHeight)
    : m_statusBarHeight(statusBarHeight)
{
    build(document, screenBounds);
}

OSTLayoutManager::~OSTLayoutManager() = default;

QRectF OSTLayoutManager::screenBounds()
{
    const QRectF bounds = OSTDeviceScreen::bounds();
    return QRectF(bounds.x(), bounds.y(), std::min(bounds.width(), bounds.height()),
                  std::max(bounds.width(), bounds.height()));
}

void OSTLayoutManager::build(const OSTScreenDocument &document, const QRectF &screenBounds)
{
    m_statusBarText = OSTLayoutNumbers::twoDecimals(m_statusBarHeight);
    m_baseElement = std::make_shared<OSTLayoutElement>();
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.width()),
                            OSTLayoutElement::Width);
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.height()),
                            OSTLayoutElement::Height);

    // The document's table already holds, per key, the element of the latest category with its
    // layer and group; groups are found once every element is in.
    const auto &entries = document.layoutEntries();
    ElementTable table;
    for (auto entry = entries.constBegin(); entry != entries.constEnd(); ++entry) {
        auto element = std::make_shared<OSTLayoutElement>(entry->element->frame());
        element->setParent(m_baseElement);
        element->setZLayer(entry->zLayer);
        table.insert(table.constEnd(), entry.key(), std::move(element));
    }
    // The table has the entries' keys in the same order; a group's members mostly follow each other.
    auto element = table.constBegin();
    const QString *groupKey = nullptr;
    std::shared_ptr<OSTLayoutElement> group;
    for (auto entry = entries.constBegin(); entry != entries.constEnd(); ++entry, ++element) {
        if (!entry->group)
            continue;
        if (!groupKey || *groupKey != *entry->group) {
            groupKey = &*entry->group;
            group = table.value(*groupKey);
        }
        element.value()->setParent(group);
    }

    m_elements = std::move(table);
    m_table.reserve(size_t(m_elements.size()));
    m_tableKeys.reserve(m_elements.size());
    for (auto entry = m_elements.constBegin(); entry != m_elements.constEnd(); ++entry) {
        m_table.push_back(entry.value().get());
        m_tableKeys.append(entry.key());
        if (entry.value()->isAnchored())
            m_anchoredElementKeys.append(entry.key());
    }
    std::vector<int> order(m_table.size());
    for (size_t position = 0; position < order.size(); ++position)
        order[position] = int(position);
    std::stable_sort(order.begin(), order.end(), [this](int left, int right) {
        return m_table[size_t(left)]->zLayer() < m_table[size_t(right)]->zLayer();
    });
    m_elementKeysSortedByZLayer.reserve(m_tableKeys.size());
    for (const int position : order)
        m_elementKeysSortedByZLayer.append(m_tableKeys.at(position));

    m_keyIndex = std::make_unique<OSTLayoutKeyIndex>(m_tableKeys);
    m_formulas = std::make_unique<OSTLayoutCompiledFormulas>(*m_keyIndex, m_statusBarText);
    m_formulas->reserve(int(m_table.size()));
    for (size_t position = 0; position < m_table.size(); ++position)
        compileFormulas(int(position));
}

void OSTLayoutManager::compileFormulas(int position)
{
    const OSTLayoutElement &element = *m_table[size_t(position)];
    for (const Attribute attribute : OSTLayoutElement::allAttributes) {
        if (element.hasAttribute(attribute) && !element.isAttributeResolved(attribute))
            m_formulas->compile(position, attribute, element.value(attribute));
    }
}

void OSTLayoutManager::updateLayout(const OSTElementFrame &frame, const QString &key)
{
    const auto found = m_elements.constFind(key);
    if (found == m_elements.constEnd() || found.value()->isResolved())
        return;
    const OSTLayoutElement update(frame);
    for (const Attribute attribute : OSTLayoutElement::allAttributes)
        found.value()->setValue(update.value(attribute), attribute);
    if (!m_formulasUsed)
        compileFormulas(m_keyIndex->positionOf(key));
}

bool OSTLayoutManager::resolveLayout()
{
    // The formulas are kept until the manager goes: freeing them here would be timed with the
    // resolution, and they are large enough to go back to the system page by page.
    OSTLayoutPassScheduler(m_table, *m_keyIndex, m_statusBarText, m_baseElement,
                           m_formulasUsed ? nullptr : m_formulas.get())
        .run();
    m_formulasUsed = true;
    const int stuck = stuckElementPosition();
    if (stuck < 0)
        return true;
    logStuckElement(stuck);
    return false;
}

// One element that stayed unresolved, preferably one that is stuck on its own formulas rather
// than waiting for its parent; -1 when all are resolved.
int OSTLayoutManager::stuckElementPosition() const
{
    int stuck = -1;
    for (size_t position = 0; position < m_table.size(); ++position) {
        const OSTLayoutElement &element = *m_table[position];
        if (element.isResolved())
            continue;
        if (!waitsForParent(element))
            return int(position);
        if (stuck < 0)
            stuck = int(position);
    }
    return stuck;
}

void OSTLayoutManager::logStuckElement(int position) const
{
    const OSTLayoutElement &element = *m_table[size_t(position)];
    QString detail = QStringLiteral("its parent stayed unresolved");
    if (!waitsForParent(element)) {
        for (const Attribute attribute : OSTLayoutElement::allAttributes) {
            if (element.hasAttribute(attribute) && !element.isAttributeResolved(attribute)) {
                detail = QStringLiteral("\"%1\" is \"%2\"")
                             .arg(OSTLayoutElement::attributeName(attribute),
                                  shortened(element.value(attribute)));
                break;
            }
        }
    }
    OSTLogging::logDebug(
        QStringLiteral("Layout not resolved: element \"%1\" stayed unresolved (%2)"),
        shortened(m_tableKeys.at(position)), detail);
}

bool OSTLayoutManager::waitsForParent(const OSTLayoutElement &element)
{
    const std::shared_ptr<OSTLayoutElement> parent = element.parent();
    return !parent || !parent->isResolved();
}

QRectF OSTLayoutManager::frameForKey(const QString &key) const
{
    const auto found = m_elements.constFind(key);
    if (found == m_elements.constEnd())
        return QRectF(0, 0, 0, 0);
    return found.value()->frame();
}

} // namespace ostrel
