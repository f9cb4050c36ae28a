#pragma once

#include <QStringList>
#include <QStringView>

#include <vector>

namespace ostrel {

// An open-addressing hash index of the keys of the layout table, so that a reference's key is
// found from a view of the formula, without making a string of it. Internal to the layout
// engine; used on the GUI thread only.
class OSTLayoutKeyIndex {
public:
    // `keys` must outlive the index.
    explicit OSTLayoutKeyIndex(const QStringList &keys);

    // The position of `key` in the keys, or -1.
    int positionOf(QStringView key) const;

private:
    static size_t hashOf(QStringView key);

    const QStringList &m_keys;
    std::vector<int> m_slots;
};

} // namespace ostrel
