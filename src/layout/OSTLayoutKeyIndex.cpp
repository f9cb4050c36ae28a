#include "layout/OSTLayoutKeyIndex.h"

namespace ostrel {

OSTLayoutKeyIndex::OSTLayoutKeyIndex(const QStringList &keys)
    : m_keys(keys)
{
    size_t slotCount = 16;
    while (slotCount < size_t(m_keys.size()) * 2)
        slotCount *= 2;
    m_slots.assign(slotCount, -1);
    for (qsizetype position = 0; position < m_keys.size(); ++position) {
        size_t slot = hashOf(m_keys.at(position)) & (slotCount - 1);
        while (m_slots[slot] >= 0)
            slot = (slot + 1) & (slotCount - 1);
        m_slots[slot] = int(position);
    }
}

} // namespace ostrel
