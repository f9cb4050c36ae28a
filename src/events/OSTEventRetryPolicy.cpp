#include "events/OSTEventRetryPolicy.h"

#include <QRandomGenerator>

#include <algorithm>

namespace ostrel {

OSTEventRetryPolicy::OSTEventRetryPolicy(std::function<double()> uniform)
    : m_uniform(uniform ? std::move(uniform) : [] { return QRandomGenerator::global()->generateDouble(); })
{
}

double OSTEventRetryPolicy::delayAfterFailure()
{
    const double base = m_baseDelay;
    m_baseDelay = std::min(m_baseDelay * 2.0, longestDelay);
    return base * (1.0 - spread + 2.0 * spread * m_uniform());
}

void OSTEventRetryPolicy::reset()
{
    m_baseDelay = firstDelay;
}

} // namespace ostrel
