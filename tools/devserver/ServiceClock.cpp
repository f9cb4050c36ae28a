#include "ServiceClock.h"

#include <QTimer>

#include <algorithm>

namespace ostrel::devserver {

void ServiceClock::callAfter(double seconds, std::function<void()> work)
{
    if (m_kind == Kind::Real) {
        QTimer::singleShot(static_cast<int>(seconds * 1000.0), std::move(work));
        return;
    }
    m_pending.push_back({m_elapsedSeconds + seconds, std::move(work)});
}

void ServiceClock::advance(double seconds)
{
    Q_ASSERT(m_kind == Kind::Driven);
    m_elapsedSeconds += seconds;
    // Stable, so work due at the same moment runs in the order it was scheduled.
    std::stable_sort(m_pending.begin(), m_pending.end(),
                     [](const Pending &left, const Pending &right) { return left.dueSeconds < right.dueSeconds; });
    const auto firstNotDue = std::find_if(m_pending.begin(), m_pending.end(),
                                          [this](const Pending &pending) { return pending.dueSeconds > m_elapsedSeconds; });
    std::vector<Pending> due(std::make_move_iterator(m_pending.begin()), std::make_move_iterator(firstNotDue));
    m_pending.erase(m_pending.begin(), firstNotDue);
    for (Pending &pending : due)
        pending.work();
}

} // namespace ostrel::devserver
