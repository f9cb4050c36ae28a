#include "render/OSTLayoutManager.h"

#include "core/OSTDictionaryHelpers.h"
#include "core/OSTLogging.h"
#include "platform/OSTDeviceScreen.h"
#include "render/OSTLayoutNumbers.h"
#include "render/OSTLayoutPassScheduler.h"

#include <algorithm>
#include <iterator>

namespace ostrel {

namespace {

using Attribute = OSTLayoutElement::Attribute;

// Adds the elements of one category (or the groups), which come in key order, walking the table
// along with them so that each goes in next to its neighbour instead of being searched for. An
// element replaces one of the same key. `added` runs for each element once it is in the table.
template <typename MakeElement, typename Added>
void mergeInOrder(OSTLayoutManager::ElementTable &table, const QVariantMap &objects,
                  MakeElement makeElement, Added added)
{
    auto position = table.begin();
    for (auto entry = objects.constBegin(); entry != objects.constEnd(); ++entry) {
        if (entry.value().metaType() != QMetaType::fromType<QVariantMap>())
            continue;
        while (position != table.end() && position.key() < entry.key())
            ++position;
        std::shared_ptr<OSTLayoutElement> element = makeElement(entry.value());
        if (position != table.end() && position.key() == entry.key())
            position.value() = element;
        else
            position = table.insert(position, entry.key(), element);
        added(entry.value(), element);
    }
}

// The element of `key`, trying first the one after the previous find: group members are
// mostly listed in key order.
OSTLayoutManager::ElementTable::const_iterator
findMember(const OSTLayoutManager::ElementTable &table, const QString &key,
           OSTLayoutManager::ElementTable::const_iterator guess)
{
    if (guess != table.constEnd() && guess.key() == key)
        return guess;
    return table.constFind(key);
}

QString shortened(const QString &text)
{
    constexpr qsizetype limit = 120;
    return text.size() <= limit ? text : text.left(limit) + QStringLiteral("...");
}

} // namespace

OSTLayoutManager::OSTLayoutManager(const QVariantMap &layout)
    : OSTLayoutManager(layout, screenBounds(), OSTDeviceScreen::statusBarHeight())
{
}

OSTLayoutManager::OSTLayoutManager(const QVariantMap &layout, const QRectF &screenBounds,
                                   double statusBarHeight)
    : m_statusBarHeight(statusBarHeight)
{
    build(layout, screenBounds);
}

OSTLayoutManager::~OSTLayoutManager() = default;

QRectF OSTLayoutManager::screenBounds()
{
    const QRectF bounds = OSTDeviceScreen::bounds();
    return QRectF(bounds.x(), bounds.y(), std::min(bounds.width(), bounds.height()),
                  std::max(bounds.width(), bounds.height()));
}

void OSTLayoutManager::build(const QVariantMap &layout, const QRectF &screenBounds)
{
    m_statusBarText = OSTLayoutNumbers::twoDecimals(m_statusBarHeight);
    m_baseElement = std::make_shared<OSTLayoutElement>();
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.width()),
                            OSTLayoutElement::Width);
    m_baseElement->setValue(OSTLayoutNumbers::twoDecimals(screenBounds.height()),
                            OSTLayoutElement::Height);

    const auto makeElement = [this](const QVariant &object, qint64 defaultLayer) {
        auto element = std::make_shared<OSTLayoutElement>(object.toMap());
        element->setParent(m_baseElement);
        if (element->zLayer() < 0)
            element->setZLayer(defaultLayer);
        return element;
    };

    // The categories in key order: of two same-keyed elements of different categories, the
    // one of the later category ("shapes" last) stays.
    struct Category {
        QString key;
        qint64 zLayer;
    };
    static const Category categories[] = {
        {QStringLiteral("buttons"), 700}, {QStringLiteral("images"), 300},
        {QStringLiteral("inputs"), 600},  {QStringLiteral("labels"), 500},
        {QStringLiteral("shapes"), 200},
    };
    ElementTable table;
    for (const Category &category : categories) {
        const std::optional<QVariantMap> objects = ost_dictionaryForKey(layout, category.key);
        if (objects) {
            mergeInOrder(
                table, *objects,
                [&](const QVariant &object) { return makeElement(object, category.zLayer); },
                [](const QVariant &, const std::shared_ptr<OSTLayoutElement> &) {});
        }
    }

    // Groups after all categories, in key order: an element listed in two groups ends in the
    // later one.
    static const QString groupsKey = QStringLiteral("groups");
    static const QString membersKey = QStringLiteral("elements");
    const QVariantMap groups = ost_dictionaryForKey(layout, groupsKey).value_or(QVariantMap());
    const auto adoptMembers = [&table](const QVariant &object,
                                       const std::shared_ptr<OSTLayoutElement> &group) {
        const QVariantList members =
            ost_arrayForKey(object.toMap(), membersKey).value_or(QVariantList());
        auto guess = table.constEnd();
        for (const QVariant &member : members) {
            if (member.metaType() != QMetaType::fromType<QString>())
                continue;
            const auto found = findMember(
                table, *static_cast<const QString *>(member.constData()), guess);
            if (found == table.constEnd())
                continue;
            found.value()->setParent(group);
            guess = std::next(found);
        }
    };
    mergeInOrder(
        table, groups, [&](const QVariant &object) { return makeElement(object, 400); },
        adoptMembers);

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

void OSTLayoutManager::updateLayout(const QVariantMap &layout, const QString &key)
{
    const auto found = m_elements.constFind(key);
    if (found == m_elements.constEnd() || found.value()->isResolved())
        return;
    const OSTLayoutElement update(layout);
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
