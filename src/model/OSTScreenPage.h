#pragma once

#include "platform/OSTClock.h"

#include <QList>
#include <QPointer>
#include <QRect>
#include <QSet>
#include <QSize>
#include <QSizeF>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

class QObject;

namespace ostrel {

class OSTElementDescription;
class OSTLayoutManager;
class OSTScreen;
class OSTScreenDocument;

// Where and in which order a screen's elements go, whatever toolkit draws them: the screen JSON
// (after dynamic-variable substitution) read once into a screen document and laid out by the
// layout engine; the elements in build order; the stacking of the page and of each group; the
// anchored elements that stay put while the page scrolls; the "errorMessage" label's alternative
// layout; the relayout after a change of size, at most once per relayoutInterval however many
// changes arrive in between; the count of required images still loading.
//
// Fractional frames become pixel geometry by one rule: each edge is rounded to the nearest whole
// point (halves up) in screen coordinates, and the size is the distance between the rounded edges.
// Elements that touch in the layout (one ends at 12.75 where the next begins) touch on screen,
// with neither gap nor overlap, and no size is off by more than one point. A grouped element's
// geometry is its rounded rectangle taken relative to its group's rounded origin, so it lines up
// with ungrouped elements.
//
// Lives on the GUI thread; owned by the toolkit's screen view, which it calls back after a relayout.
class OSTScreenPage final {
public:
    // Replaces the dynamic variables in the screen JSON text; identity when none is given.
    using Substitution = std::function<QString(const QString &text)>;
    // What to do when some frame formula never resolves.
    enum class UnresolvedLayout {
        Fail,         // no page (what an experience does)
        ShowResolved, // build it anyway; unresolved elements get the zero rectangle (previews)
    };
    // A group and its members, lowest layer first.
    struct GroupMembers {
        QString group;
        QStringList members;
    };

    static constexpr double relayoutInterval = 0.1;
    // Edges are held to this, the largest size a widget or an item takes, so that the arithmetic
    // on them stays within int whatever a hostile layout produces.
    static constexpr int largestEdge = (1 << 24) - 1;

    // The page of `screen` laid out in `area` points; null when the JSON does not parse to an
    // object or (with Fail) the layout cannot be resolved.
    static std::unique_ptr<OSTScreenPage> create(const std::shared_ptr<const OSTScreen> &screen,
                                                 const QSizeF &area, const Substitution &substitution,
                                                 UnresolvedLayout unresolved);
    ~OSTScreenPage();
    OSTScreenPage(const OSTScreenPage &) = delete;
    OSTScreenPage &operator=(const OSTScreenPage &) = delete;

    const std::shared_ptr<const OSTScreen> &screen() const { return m_screen; }
    const std::shared_ptr<const OSTScreenDocument> &document() const { return m_document; }
    // The layout of the screen's own frames (not the error message's alternative).
    const OSTLayoutManager &layoutManager() const { return *m_layoutManager; }
    // The size the page was laid out at, in whole points.
    QSize layoutSize() const { return m_layoutSize; }

    // Calls `buildElement` for every element, category by category in the vocabulary's build
    // order, and `buildSelectionGroups` before the inputs: selection groups take the buttons built
    // before them, and an input sharing a key with a group or a member replaces it.
    void build(const std::function<void()> &buildSelectionGroups,
               const std::function<void(const std::shared_ptr<const OSTElementDescription> &element)> &buildElement) const;
    // The keys of the elements that lie directly on the page, lowest first: the background, then
    // the ungrouped elements by layer.
    QStringList pageStackingOrder() const;
    // Every group of the document with its members by layer.
    QList<GroupMembers> groupStackingOrder() const;
    // Keys listed in any group's "elements", duplicates kept.
    const QStringList &groupedKeys() const { return m_groupedKeys; }
    bool isGrouped(const QString &key) const { return m_groupedKeySet.contains(key); }
    // Anchored elements stay put while the page scrolls; grouped ones move with their group.
    bool isAnchoredOnPage(const QString &key) const;
    bool isScrolling(const QString &key) const;
    // The ungrouped anchored keys.
    QStringList anchoredPageKeys() const;

    // The geometry of an element in the current layout, relative to its group or the page; none
    // for a key the layout does not know.
    std::optional<QRect> layoutGeometry(const QString &key) const;
    // How far an element moves down so that it stays put on screen while the page scrolls: the
    // scroll offset for an anchored element on the page, 0 for the others.
    int scrollShift(const QString &key) const { return isAnchoredOnPage(key) ? m_scrollOffset : 0; }
    int scrollOffset() const { return m_scrollOffset; }
    void setScrollOffset(int offset) { m_scrollOffset = offset; }

    // Switches to the layout with the "errorMessage" label at its error frame, or back.
    void setShowsError(bool shows);
    bool showsError() const { return m_showsError; }

    // The page's view was resized to `size`: once relayoutInterval passed, the page is laid out
    // again at the latest size and `relaidOut` (set by setRelayoutHandler) places the elements.
    void resize(QSize size);
    // `context` (the view) outlives the page or the scheduled relayout is dropped with it.
    void setRelayoutHandler(QObject *context, std::function<void()> relaidOut);

    // Required images: each one counted while it loads.
    void requiredImageStarted() { ++m_requiredImageCount; }
    // True when the last one finished on a built page.
    bool requiredImageFinished();
    unsigned requiredImageCount() const { return m_requiredImageCount; }
    void finishBuilding() { m_built = true; }
    bool isLoaded() const { return m_built; }
    bool isFullyLoaded() const { return m_built && m_requiredImageCount == 0; }

    static int roundedEdge(double edge);
    static QSize roundedSize(const QSizeF &size);
    // The geometry of a layout rectangle whose parent's top-left corner lies at `parentOrigin` in
    // screen coordinates (see the rounding rule above).
    static QRect pixelGeometry(const QRectF &frame, QPointF parentOrigin);

private:
    OSTScreenPage(const std::shared_ptr<const OSTScreen> &screen, std::shared_ptr<const OSTScreenDocument> document,
                  std::unique_ptr<OSTLayoutManager> layoutManager, UnresolvedLayout unresolved);

    const OSTLayoutManager &currentLayout() const;
    void buildErrorLayoutOnce();
    void relayout();

    const std::shared_ptr<const OSTScreen> m_screen;
    const std::shared_ptr<const OSTScreenDocument> m_document;
    const UnresolvedLayout m_unresolved;
    std::unique_ptr<OSTLayoutManager> m_layoutManager;
    QSize m_layoutSize; // the size m_layoutManager was resolved at
    QSize m_size;       // the view's latest size
    std::unique_ptr<OSTLayoutManager> m_errorLayoutManager; // built on first use of the error layout
    bool m_errorLayoutBuilt = false;
    bool m_showsError = false;
    const QStringList m_groupedKeys;
    const QSet<QString> m_groupedKeySet;
    QSet<QString> m_anchoredKeySet;
    int m_scrollOffset = 0;

    unsigned m_requiredImageCount = 0;
    bool m_built = false;

    QPointer<QObject> m_relayoutContext;
    std::function<void()> m_relaidOut;
    std::optional<OSTTimerId> m_pendingRelayout;
};

} // namespace ostrel
