#include "ui/kit/ChartView.h"

#include <algorithm>

namespace zorel::ui::kit {

namespace {

constexpr double fewestSteps = 1;

} // namespace

void ChartView::setAllSteps(ChartRange steps)
{
    m_all = steps;
    if (m_steps) {
        m_steps = inside(*m_steps);
    }
}

ChartRange ChartView::inside(ChartRange steps) const
{
    if (steps.high - steps.low < fewestSteps) {
        const double middle = (steps.low + steps.high) / 2;
        steps = {middle - fewestSteps / 2, middle + fewestSteps / 2};
    }
    const double length = steps.high - steps.low;
    if (length >= m_all.high - m_all.low) {
        return m_all;
    }
    const double low = std::clamp(steps.low, m_all.low, std::max(m_all.low, m_all.high - length));
    return {low, std::min(low + length, m_all.high)};
}

void ChartView::zoomTo(ChartRange steps, std::optional<ChartRange> values)
{
    m_steps = inside(steps);
    m_values = values;
    if (*m_steps == m_all) {
        m_steps.reset();
    }
}

void ChartView::zoomBy(double factor, double step)
{
    const ChartRange shown = steps();
    zoomTo({step - (step - shown.low) * factor, step + (shown.high - step) * factor});
}

void ChartView::show(double step)
{
    if (!m_steps || (step >= m_steps->low && step <= m_steps->high)) {
        return;
    }
    const double length = m_steps->high - m_steps->low;
    m_steps = inside({step - length / 2, step + length / 2});
}

void ChartView::reset()
{
    m_steps.reset();
    m_values.reset();
}

} // namespace zorel::ui::kit
