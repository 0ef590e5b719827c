#include "ui/kit/ChartSeries.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace zorel::ui::kit {

ChartSeries::ChartSeries(QString name)
    : m_name(std::move(name))
    , m_smoothing(0)
{}

void ChartSeries::append(ChartPoint point)
{
    m_raw.append(point);
    m_notFinite += std::isfinite(point.value) ? 0 : 1;
    if (m_smoothed) {
        m_smoothed->append({point.step, m_smoothing.next(point)});
    }
    keepCapacity();
}

void ChartSeries::assign(std::span<const ChartPoint> points)
{
    clear();
    for (const ChartPoint &point : points) {
        append(point);
    }
}

void ChartSeries::dropOldest(std::size_t count)
{
    for (const ChartPoint &point : m_raw.points().first(std::min(count, m_raw.size()))) {
        m_notFinite -= std::isfinite(point.value) ? 0 : 1;
    }
    m_raw.dropOldest(count);
    if (m_smoothed) {
        m_smoothed->dropOldest(count);
    }
}

void ChartSeries::clear()
{
    m_raw.clear();
    m_notFinite = 0;
    smoothAgain();
}

void ChartSeries::setCapacity(std::size_t capacity)
{
    m_capacity = capacity;
    keepCapacity();
}

void ChartSeries::setScale(ChartScaleKind scale)
{
    m_raw.setScale(scale);
    if (m_smoothed) {
        m_smoothed->setScale(scale);
    }
}

void ChartSeries::setSmoothing(double weight)
{
    const ChartSmoothing wanted(weight);
    if (wanted.weight() != m_smoothing.weight()) {
        m_smoothing = wanted;
        smoothAgain();
    }
}

void ChartSeries::smoothAgain()
{
    m_smoothing = ChartSmoothing(m_smoothing.weight());
    m_smoothed.reset();
    if (m_smoothing.weight() == 0) {
        return;
    }
    m_smoothed.emplace(m_raw.pyramid().scale(), m_raw.firstOrdinal());
    for (const ChartPoint &point : m_raw.points()) {
        m_smoothed->append({point.step, m_smoothing.next(point)});
    }
}

void ChartSeries::keepCapacity()
{
    if (m_capacity > 0 && m_raw.size() > m_capacity) {
        dropOldest(m_raw.size() - m_capacity);
    }
}

} // namespace zorel::ui::kit
