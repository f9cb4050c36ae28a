#include "platform/OSTRetryBackoff.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>

namespace ostrel {

OSTRetryBackoff::OSTRetryBackoff() : OSTRetryBackoff(Policy(), RandomSource()) {}

OSTRetryBackoff::OSTRetryBackoff(Policy policy, RandomSource random)
    : m_policy(policy), m_random(std::move(random))
{
    if (!m_random)
        m_random = [] { return QRandomGenerator::global()->generateDouble(); };
}

double OSTRetryBackoff::nextWait()
{
    // Capping the exponent first keeps the doubling finite however long an outage lasts.
    const int doublings = std::min(m_attempts, 30);
    const double unspread = std::min(m_policy.firstWait * std::ldexp(1.0, doublings), m_policy.longestWait);
    ++m_attempts;
    const double unit = std::clamp(m_random(), 0.0, 1.0);
    return unspread * (1.0 + m_policy.spread * (2.0 * unit - 1.0));
}

void OSTRetryBackoff::reset()
{
    m_attempts = 0;
}

} // namespace ostrel
