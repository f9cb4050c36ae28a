#include "render/OSTLayoutPassScheduler.h"

#include <algorithm>
#include <utility>

namespace ostrel {

OSTLayoutPassScheduler::OSTLayoutPassScheduler(
    const std::vector<OSTLayoutElement *> &table, const OSTLayoutKeyIndex &keys,
    const QString &statusBarText, const std::shared_ptr<OSTLayoutElement> &baseElement,
    const OSTLayoutCompiledFormulas *formulas)
    : m_table(table), m_nodes(nodesOf(table, baseElement)),
      m_resolver(table, keys, statusBarText, formulas)
{
}

void OSTLayoutPassScheduler::run()
{
    for (size_t position = 0; position < m_table.size(); ++position) {
        if (!m_table[position]->isResolved())
            scheduleInCurrentPass(int(position));
    }
    while (!m_current.empty()) {
        runPass();
        startNextPass();
    }
    m_resolver.writeUnresolvedFormulas();
}

// A node for each element of the table: its parent, and the parent's position when it is in
// the table, found by address.
std::vector<OSTLayoutPassScheduler::Node>
OSTLayoutPassScheduler::nodesOf(const std::vector<OSTLayoutElement *> &table,
                                const std::shared_ptr<OSTLayoutElement> &baseElement)
{
    const int count = int(table.size());
    std::vector<Node> nodes(table.size());
    std::vector<std::pair<const OSTLayoutElement *, int>> positions;
    positions.reserve(size_t(count));
    for (int position = 0; position < count; ++position)
        positions.emplace_back(table[size_t(position)], position);
    std::sort(positions.begin(), positions.end());
    for (int position = 0; position < count; ++position) {
        Node &node = nodes[size_t(position)];
        node.parent = table[size_t(position)]->parent();
        if (!node.parent || node.parent == baseElement)
            continue;
        const auto found = std::lower_bound(
            positions.begin(), positions.end(),
            std::make_pair(static_cast<const OSTLayoutElement *>(node.parent.get()), 0));
        if (found != positions.end() && found->first == node.parent.get())
            node.parentPosition = found->second;
    }
    return nodes;
}

void OSTLayoutPassScheduler::runPass()
{
    while (!m_current.empty()) {
        const int position = m_current.top();
        m_current.pop();
        visit(position);
    }
}

void OSTLayoutPassScheduler::visit(int position)
{
    OSTLayoutElement &element = *m_table[size_t(position)];
    if (element.isResolved())
        return;
    Node &node = m_nodes[size_t(position)];
    if (!node.parent || !node.parent->isResolved()) {
        if (node.parentPosition >= 0)
            await(node.parentPosition, position);
        return;
    }
    const OSTLayoutResolver::Outcome outcome = m_resolver.resolveElement(position, *node.parent);
    for (const int awaited : m_resolver.awaited())
        await(awaited, position);
    if (outcome.newlyResolved)
        wakeWaiters(node, position);
    if (outcome.changed && !element.isResolved())
        scheduleInNextPass(position);
}

// The element at `position` resolved an attribute: its waiters that come later in the table are
// visited still in this pass, as in a full pass, the others in the next pass.
void OSTLayoutPassScheduler::wakeWaiters(Node &node, int position)
{
    std::vector<int> waiters;
    waiters.swap(node.waiters);
    for (const int waiter : waiters) {
        if (waiter > position)
            scheduleInCurrentPass(waiter);
        else
            scheduleInNextPass(waiter);
    }
}

void OSTLayoutPassScheduler::scheduleInCurrentPass(int position)
{
    Node &node = m_nodes[size_t(position)];
    if (node.currentPass != m_pass) {
        node.currentPass = m_pass;
        m_current.push(position);
    }
}

void OSTLayoutPassScheduler::scheduleInNextPass(int position)
{
    Node &node = m_nodes[size_t(position)];
    if (node.nextPass != m_pass + 1) {
        node.nextPass = m_pass + 1;
        m_next.push_back(position);
    }
}

void OSTLayoutPassScheduler::startNextPass()
{
    ++m_pass;
    for (const int position : m_next) {
        m_nodes[size_t(position)].currentPass = m_pass;
        m_current.push(position);
    }
    m_next.clear();
}

void OSTLayoutPassScheduler::await(int awaited, int waiter)
{
    std::vector<int> &waiters = m_nodes[size_t(awaited)].waiters;
    if (waiters.empty() || waiters.back() != waiter)
        waiters.push_back(waiter);
}

} // namespace ostrel
