#include <ostrel/OSTUser.h>

namespace ostrel {

bool OSTUser::appendUserProperties(const QVariantMap &properties)
{
    QVariantMap changed = m_properties;
    bool anyChange = false;
    for (auto entry = properties.cbegin(); entry != properties.cend(); ++entry) {
        const auto current = m_properties.constFind(entry.key());
        if (current != m_properties.cend() && current.value() == entry.value())
            continue;
        changed.insert(entry.key(), entry.value());
        anyChange = true;
    }
    if (anyChange)
        m_properties = changed;
    return anyChange;
}

} // namespace ostrel
