#include "layout/OSTLayoutPassScheduler.h"

#include <bit>

namespace ostrel {

namespace {

// The table's positions by element address, for finding parents: open addressing over a power
// of two at least twice the table.
class PositionsByAddress {
public:
    explicit PositionsByAddress(const std::vector<OSTLayoutElement *> &table)
    {
        size_t size = 16;
        while (size < table.size() * 2)
            size *= 2;
        m_slots.resize(size);
        for (size_t position = 0; position < table.size(); ++position) {
            size_t slot = slotOf(table[position]);
            while (m_slots[slot].element)
                slot = (slot + 1) & (m_slots.size() - 1);
            m_slots[slot] = Slot{table[position], int(position)};
        }
    }

    int positionOf(const OSTLayoutElement *element) const
    {
        for (size_t slot = slotOf(element); m_slots[slot].element;
             slot = (slot + 1) & (m_slots.size() - 1)) {
            if (m_slots[slot].element == element)
                return m_slots[slot].position;
        }
        return -1;
    }

private:
    struct Slot {
        const OSTLayoutElement *element = nullptr;
        int position = -1;
    };

    size_t slotOf(const OSTLayoutElement *element) const
    {
        const std::uint64_t hash = std::uint64_t(quintptr(element)) * 0x9E3779B97F4A7C15ull;
        return size_t(hash >> 32) & (m_slots.size() - 1);
    }

    std::vector<Slot> m_slots;
};

} // namespace

OSTLayoutPassScheduler::OSTLayoutPassScheduler(
    const std::vector<OSTLayoutElement *> &table, const OSTLayoutKeyIndex &keys,
    const QString &statusBarText, const std::shared_ptr<OSTLayoutElement> &baseElement,
    const OSTLayoutCompiledFormulas *formulas)
    : m_table(table), m_nodes(nodesOf(table, baseElement)),
      m_resolver(table, keys, statusBarText, formulas), m_current((table.size() + 63) / 64),
      m_next(m_current.size())
{
}

void OSTLayoutPassScheduler::run()
{
    for (size_t position = 0; position < m_table.size(); ++position) {
        if (!m_table[position]->isResolved())
            scheduleInCurrentPass(int(position));
    }
    for (;;) {
        runPass();
        if (m_nextIsEmpty)
            break;
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
    std::vector<Node> nodes(table.size());
    const PositionsByAddress positions(table);
    for (size_t position = 0; position < table.size(); ++position) {
        Node &node = nodes[position];
        node.parent = table[position]->parent().get();
        if (node.parent && node.parent != baseElement.get())
            node.parentPosition = positions.positionOf(node.parent);
    }
    return nodes;
}

void OSTLayoutPassScheduler::runPass()
{
    for (size_t word = 0; word < m_current.size(); ++word) {
        while (m_current[word]) {
            const int bit = std::countr_zero(m_current[word]);
            m_current[word] &= m_current[word] - 1;
            visit(int(word * 64) + bit);
        }
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
    const OSTLayoutResolver::Outcome outcome =
        m_resolver.resolveElement(position, *node.parent, node.parentPosition);
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
    m_current[size_t(position) / 64] |= std::uint64_t(1) << (position % 64);
}

void OSTLayoutPassScheduler::scheduleInNextPass(int position)
{
    m_next[size_t(position) / 64] |= std::uint64_t(1) << (position % 64);
    m_nextIsEmpty = false;
}

// The current pass has visited everything it holds, so its set is empty.
void OSTLayoutPassScheduler::startNextPass()
{
    m_current.swap(m_next);
    m_nextIsEmpty = true;
}

void OSTLayoutPassScheduler::await(int awaited, int waiter)
{
    std::vector<int> &waiters = m_nodes[size_t(awaited)].waiters;
    if (waiters.empty() || waiters.back() != waiter)
        waiters.push_back(waiter);
}

} // namespace ostrel
