#include "ui/kit/ChartSmoothing.h"

#include <algorithm>
#include <cmath>

namespace zorel::ui::kit {

ChartSmoothing::ChartSmoothing(double weight)
    : m_weight(std::isfinite(weight) ? std::clamp(weight, 0.0, greatestWeight) : 0.0)
{}

double ChartSmoothing::next(ChartPoint point)
{
    if (m_lastStep && point.step < *m_lastStep) {
        m_share = 0;
    }
    m_lastStep = point.step;
    if (!std::isfinite(point.value)) {
        return point.value;
    }
    m_share = m_weight * m_share + 1;
    // A mean of two values lies between them, so that the largest numbers cannot overflow.
    const double part = 1 / m_share;
    m_average = m_average * (1 - part) + point.value * part;
    return m_average;
}

} // namespace zorel::ui::kit
