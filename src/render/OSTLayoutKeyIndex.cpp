#include "render/OSTLayoutKeyIndex.h"

#include <cstdint>

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

int OSTLayoutKeyIndex::positionOf(QStringView key) const
{
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = hashOf(key) & mask; m_slots[slot] >= 0; slot = (slot + 1) & mask) {
        if (QStringView(m_keys.at(m_slots[slot])) == key)
            return m_slots[slot];
    }
    return -1;
}

// FNV-1a over the UTF-16 code units: keys are short, and the index lives for one resolution.
size_t OSTLayoutKeyIndex::hashOf(QStringView key)
{
    std::uint64_t hash = 14695981039346656037ull;
    for (const QChar c : key) {
        hash ^= c.unicode();
        hash *= 1099511628211ull;
    }
    return size_t(hash);
}

} // namespace ostrel
