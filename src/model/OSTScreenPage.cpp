#include "model/OSTScreenPage.h"

#include "core/OSTLogging.h"
#include "experience/OSTScreen.h"
#include "layout/OSTLayoutManager.h"
#include "platform/OSTDeviceScreen.h"
#include "screen/OSTElementDescription.h"
#include "screen/OSTLabelDescription.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"

#include <QHash>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

const QString &backgroundKey = OSTScreenVocabulary::backgroundKey;
const QString &errorMessageKey = OSTScreenVocabulary::errorMessageKey;
const QString inputsCategory = u"inputs"_s;

} // namespace

std::unique_ptr<OSTScreenPage> OSTScreenPage::create(const std::shared_ptr<const OSTScreen> &screen,
                                                     const QSizeF &area, const Substitution &substitution,
                                                     UnresolvedLayout unresolved)
{
    if (!screen)
        return nullptr;
    const QString text = substitution ? substitution(screen->json()) : screen->json();
    std::shared_ptr<const OSTScreenDocument> document = OSTScreenDocument::read(text);
    if (!document)
        return nullptr;
    auto layoutManager = std::make_unique<OSTLayoutManager>(*document, QRectF(QPointF(), area),
                                                            OSTDeviceScreen::statusBarHeight());
    if (!layoutManager->resolveLayout() && unresolved == UnresolvedLayout::Fail) {
        OSTLogging::logError(u"The layout of screen %1 cannot be resolved"_s, screen->key());
        return nullptr;
    }
    return std::unique_ptr<OSTScreenPage>(
        new OSTScreenPage(screen, std::move(document), std::move(layoutManager), unresolved));
}

OSTScreenPage::OSTScreenPage(const std::shared_ptr<const OSTScreen> &screen,
                             std::shared_ptr<const OSTScreenDocument> document,
                             std::unique_ptr<OSTLayoutManager> layoutManager, UnresolvedLayout unresolved)
    : m_screen(screen), m_document(std::move(document)), m_unresolved(unresolved),
      m_layoutManager(std::move(layoutManager)),
      m_layoutSize(roundedSize(m_layoutManager->baseElement()->frame().size())), m_size(m_layoutSize),
      m_groupedKeys(m_document->groupedKeys()), m_groupedKeySet(m_groupedKeys.cbegin(), m_groupedKeys.cend())
{
    const QStringList &anchored = m_layoutManager->anchoredElementKeys();
    m_anchoredKeySet = QSet<QString>(anchored.cbegin(), anchored.cend());
}

OSTScreenPage::~OSTScreenPage()
{
    if (m_pendingRelayout)
        OSTClock::current().cancel(*m_pendingRelayout);
}

void OSTScreenPage::build(
    const std::function<void()> &buildSelectionGroups,
    const std::function<void(const std::shared_ptr<const OSTElementDescription> &element)> &buildElement) const
{
    for (const QString &category : OSTScreenVocabulary::buildOrder()) {
        if (category == inputsCategory)
            buildSelectionGroups();
        for (const auto &element : m_document->elements(category))
            buildElement(element);
    }
}

QStringList OSTScreenPage::pageStackingOrder() const
{
    QStringList order{backgroundKey};
    for (const QString &key : m_layoutManager->elementKeysSortedByZLayer()) {
        if (!isGrouped(key) && key != backgroundKey)
            order.append(key);
    }
    return order;
}

QList<OSTScreenPage::GroupMembers> OSTScreenPage::groupStackingOrder() const
{
    const QStringList &order = m_layoutManager->elementKeysSortedByZLayer();
    QHash<QString, qsizetype> positions;
    positions.reserve(order.size());
    for (qsizetype index = 0; index < order.size(); ++index)
        positions.insert(order.at(index), index);
    const auto position = [&positions](const QString &key) {
        return positions.value(key, std::numeric_limits<qsizetype>::max());
    };
    QList<GroupMembers> groups;
    for (const auto &group : m_document->elements(u"groups"_s)) {
        QStringList members = m_document->groupViewKeys(group->key());
        std::stable_sort(members.begin(), members.end(),
                         [&](const QString &a, const QString &b) { return position(a) < position(b); });
        groups.append({group->key(), members});
    }
    return groups;
}

bool OSTScreenPage::isAnchoredOnPage(const QString &key) const
{
    return m_anchoredKeySet.contains(key) && !isGrouped(key);
}

bool OSTScreenPage::isScrolling(const QString &key) const
{
    return !m_anchoredKeySet.contains(key) && !isGrouped(key);
}

QStringList OSTScreenPage::anchoredPageKeys() const
{
    QStringList keys;
    for (const QString &key : m_layoutManager->anchoredElementKeys()) {
        if (!isGrouped(key))
            keys.append(key);
    }
    return keys;
}

std::optional<QRect> OSTScreenPage::layoutGeometry(const QString &key) const
{
    const OSTLayoutManager &layout = currentLayout();
    const std::shared_ptr<OSTLayoutElement> element = layout.elements().value(key);
    if (!element)
        return std::nullopt;
    // The parent chain is short and acyclic in a resolved layout; the bound protects against a
    // hostile one all the same.
    QPointF parentOrigin;
    qsizetype steps = layout.elements().size();
    for (auto parent = element->parent(); parent && parent != layout.baseElement() && steps-- > 0;
         parent = parent->parent())
        parentOrigin += parent->frame().topLeft();
    return pixelGeometry(layout.frameForKey(key), parentOrigin);
}

void OSTScreenPage::setShowsError(bool shows)
{
    buildErrorLayoutOnce();
    m_showsError = shows;
}

void OSTScreenPage::buildErrorLayoutOnce()
{
    if (m_errorLayoutBuilt)
        return;
    m_errorLayoutBuilt = true;
    auto errorLayout = std::make_unique<OSTLayoutManager>(*m_document, QRectF(QPointF(), QSizeF(m_size)),
                                                          m_layoutManager->statusBarHeight());
    errorLayout->updateLayout(m_document->errorMessageWhileShowing()->frame(), errorMessageKey);
    if (errorLayout->resolveLayout())
        m_errorLayoutManager = std::move(errorLayout);
}

const OSTLayoutManager &OSTScreenPage::currentLayout() const
{
    return m_showsError && m_errorLayoutManager ? *m_errorLayoutManager : *m_layoutManager;
}

void OSTScreenPage::setRelayoutHandler(QObject *context, std::function<void()> relaidOut)
{
    m_relayoutContext = context;
    m_relaidOut = std::move(relaidOut);
}

void OSTScreenPage::resize(QSize size)
{
    m_size = size;
    if (m_size == m_layoutSize || m_pendingRelayout || !m_relayoutContext)
        return;
    m_pendingRelayout = OSTClock::current().schedule(relayoutInterval, m_relayoutContext, [this] {
        m_pendingRelayout.reset();
        relayout();
    });
}

void OSTScreenPage::relayout()
{
    if (m_size == m_layoutSize)
        return;
    auto layoutManager = std::make_unique<OSTLayoutManager>(*m_document, QRectF(QPointF(), QSizeF(m_size)),
                                                            m_layoutManager->statusBarHeight());
    const bool resolved = layoutManager->resolveLayout();
    m_layoutSize = m_size;
    if (!resolved && m_unresolved == UnresolvedLayout::Fail) {
        OSTLogging::logWarning(u"The layout of screen %1 cannot be resolved at %2 by %3; keeping the last one"_s,
                               m_screen->key(), m_size.width(), m_size.height());
        return;
    }
    m_layoutManager = std::move(layoutManager);
    const QStringList &anchored = m_layoutManager->anchoredElementKeys();
    m_anchoredKeySet = QSet<QString>(anchored.cbegin(), anchored.cend());
    m_errorLayoutManager.reset();
    m_errorLayoutBuilt = false;
    if (m_showsError)
        buildErrorLayoutOnce();
    if (m_relaidOut)
        m_relaidOut();
}

bool OSTScreenPage::requiredImageFinished()
{
    if (m_requiredImageCount > 0)
        --m_requiredImageCount;
    return isFullyLoaded();
}

int OSTScreenPage::roundedEdge(double edge)
{
    if (!std::isfinite(edge))
        return 0;
    const double limit = largestEdge;
    return int(std::floor(std::clamp(edge, -limit, limit) + 0.5));
}

QSize OSTScreenPage::roundedSize(const QSizeF &size)
{
    return QSize(roundedEdge(size.width()), roundedEdge(size.height())).expandedTo(QSize(0, 0));
}

QRect OSTScreenPage::pixelGeometry(const QRectF &frame, QPointF parentOrigin)
{
    const QPointF topLeft = parentOrigin + frame.topLeft();
    const int left = roundedEdge(topLeft.x());
    const int top = roundedEdge(topLeft.y());
    const int right = roundedEdge(topLeft.x() + frame.width());
    const int bottom = roundedEdge(topLeft.y() + frame.height());
    const QPoint roundedParentOrigin(roundedEdge(parentOrigin.x()), roundedEdge(parentOrigin.y()));
    return QRect(QPoint(left, top) - roundedParentOrigin, QSize(right - left, bottom - top));
}

} // namespace ostrel
