#pragma once

#include <QStringList>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace ostrel {

// An open-addressing hash index of the keys of the layout table, so that a reference's key is
// found from a view of the formula, without making a string of it.
// Internal to the layout engine (not exported); used on the GUI thread only.
class OSTLayoutKeyIndex {
public:
    // `keys` must outlive the index.
    explicit OSTLayoutKeyIndex(const QStringList &keys);

    // The position of `key` in the keys, or -1.
    int positionOf(QStringView key) const
    {
        const size_t mask = m_slots.size() - 1;
        for (size_t slot = hashOf(key) & mask; m_slots[slot] >= 0; slot = (slot + 1) & mask) {
            if (QStringView(m_keys.at(m_slots[slot])) == key)
                return m_slots[slot];
        }
        return -1;
    }

private:
    // FNV-1a over the UTF-16 code units: keys are short, and the index lives for one resolution.
    static size_t hashOf(QStringView key)
    {
        std::uint64_t hash = 14695981039346656037ull;
        for (const QChar c : key) {
            hash ^= c.unicode();
            hash *= 1099511628211ull;
        }
        return size_t(hash);
    }

    const QStringList &m_keys;
    std::vector<int> m_slots;
};

} // namespace ostrel
