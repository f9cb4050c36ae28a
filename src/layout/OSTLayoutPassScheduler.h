#pragma once

#include "layout/OSTLayoutCompiledFormulas.h"
#include "layout/OSTLayoutElement.h"
#include "layout/OSTLayoutKeyIndex.h"
#include "layout/OSTLayoutResolver.h"

#include <QString>
#include <QStringList>

#include <cstdint>
#include <memory>
#include <vector>

namespace ostrel {

// The resolution passes over the layout table. Resolution is defined as full passes over the
// table until a pass changes nothing. A chain of n references that the table visits last to
// first then takes n passes of n elements. Here each pass visits, in table order, only the
// elements whose next visit could change something:
//
//  - every unresolved element in the first pass;
//  - an element whose strings changed in a pass, again in the next pass;
//  - an element that found an attribute it needed unresolved (a referenced element's, or its
//    parent unresolved), when that element resolves an attribute: still in the same pass when
//    it comes later in the table, as in a full pass, otherwise in the next pass.
//
// Any other visit would repeat a visit that changed nothing, with the same strings of its own
// and the same inputs (resolved attributes never change again), so it would change nothing
// again. The passes therefore make the same changes in the same order as full passes, and end
// with the same strings.
//
// Internal to the layout engine (not exported); used on the GUI thread only.
class OSTLayoutPassScheduler {
public:
    // The table, its key index, the status bar text and the formulas must outlive the
    // scheduler. Without formulas every attribute takes the string path.
    OSTLayoutPassScheduler(const std::vector<OSTLayoutElement *> &table,
                           const OSTLayoutKeyIndex &keys, const QString &statusBarText,
                           const std::shared_ptr<OSTLayoutElement> &baseElement,
                           const OSTLayoutCompiledFormulas *formulas);

    // Runs passes until one changes nothing, then writes the texts of the compiled formulas
    // that stayed unresolved.
    void run();

private:
    struct Node {
        // Owned by the manager, which outlives the scheduler; null when the parent is gone.
        const OSTLayoutElement *parent = nullptr;
        int parentPosition = -1; // -1: the base element, or an element outside the table
        std::vector<int> waiters;
    };

    // One bit per position of the table.
    using PositionSet = std::vector<std::uint64_t>;

    static std::vector<Node> nodesOf(const std::vector<OSTLayoutElement *> &table,
                                     const std::shared_ptr<OSTLayoutElement> &baseElement);
    void runPass();
    void visit(int position);
    void wakeWaiters(Node &node, int position);
    void scheduleInCurrentPass(int position);
    void scheduleInNextPass(int position);
    void startNextPass();
    void await(int awaited, int waiter);

    const std::vector<OSTLayoutElement *> &m_table;
    std::vector<Node> m_nodes;
    OSTLayoutResolver m_resolver;
    // The elements still to visit in this pass (visited in table order; a pass only ever adds
    // positions after the one being visited) and in the next.
    PositionSet m_current;
    PositionSet m_next;
    bool m_nextIsEmpty = true;
};

} // namespace ostrel
