#include "terminal/RemainingTime.h"

#include <algorithm>
#include <cmath>

namespace zorel::terminal {

void RemainingTime::update(const backend::protocol::TrainStatusPayload &status)
{
    m_maxSteps = status.maxSteps;
    if (status.state != QLatin1String("running") || !std::isfinite(status.elapsedS) ||
        (!m_samples.empty() && status.step < m_samples.back().step)) {
        m_samples.clear();
        return;
    }
    if (!m_samples.empty() && m_samples.back().step == status.step) {
        return;
    }
    m_samples.push_back({status.step, status.elapsedS});
    // Slow steps may be longer apart than the window: two samples always stay.
    while (m_samples.size() > 2 && status.elapsedS - m_samples[1].elapsedS >= window) {
        m_samples.pop_front();
    }
}

std::optional<double> RemainingTime::seconds() const
{
    if (m_samples.size() < 2) {
        return std::nullopt;
    }
    const Sample &first = m_samples.front();
    const Sample &last = m_samples.back();
    const double perStep = (last.elapsedS - first.elapsedS) / double(last.step - first.step);
    if (perStep < 0) {
        return std::nullopt;
    }
    return perStep * double(std::max<std::int64_t>(0, m_maxSteps - last.step));
}

} // namespace zorel::terminal
