#include "ui/kit/ChartTrack.h"

#include <algorithm>

namespace zorel::ui::kit {

namespace {

/// Adds a part of the list to an extent.
void widen(std::optional<ChartTrack::Extent> &extent, const ChartPyramid::Block &block, std::uint64_t ordinal)
{
    const ChartRange steps{static_cast<double>(block.firstStep), static_cast<double>(block.lastStep)};
    if (!extent) {
        extent = ChartTrack::Extent{steps, {}, 0, false};
    }
    extent->steps.low = std::min(extent->steps.low, steps.low);
    extent->steps.high = std::max(extent->steps.high, steps.high);
    if (!block.hasValues) {
        return;
    }
    if (!extent->hasValues || block.lowest < extent->values.low) {
        extent->values.low = block.lowest;
        extent->lowest = ordinal + block.lowestAt;
    }
    extent->values.high = extent->hasValues ? std::max(extent->values.high, block.highest) : block.highest;
    extent->hasValues = true;
}

ChartPyramid::Block blockOf(const ChartPoint &point, bool drawn)
{
    return {point.value, point.value, point.step, point.step, 0, 0, drawn, !drawn, !drawn};
}

} // namespace

ChartTrack::ChartTrack(ChartScaleKind scale, std::uint64_t first)
    : m_base(first)
    , m_pyramid(scale, first)
{}

void ChartTrack::append(ChartPoint point)
{
    m_points.push_back(point);
    m_pyramid.append(point);
    if (!ChartPyramid::canDraw(m_pyramid.scale(), point.value)) {
        ++m_omitted;
    }
    if (turnsAt(endOrdinal() - 1)) {
        ++m_turns;
    }
}

void ChartTrack::dropOldest(std::size_t count)
{
    count = std::min(count, size());
    for (std::uint64_t ordinal = firstOrdinal(); ordinal < firstOrdinal() + count; ++ordinal) {
        m_omitted -= canDraw(ordinal) ? 0 : 1;
        m_turns -= ordinal + 1 < endOrdinal() && turnsAt(ordinal + 1) ? 1 : 0;
    }
    m_dead += count;
    m_pyramid.dropBefore(firstOrdinal());
    // Moving the rest to the front pays off once as much is dead as alive.
    constexpr std::size_t fewest = 1024;
    if (m_dead >= fewest && m_dead * 2 >= m_points.size()) {
        m_points.erase(m_points.begin(), m_points.begin() + static_cast<std::ptrdiff_t>(m_dead));
        m_base += m_dead;
        m_dead = 0;
    }
}

void ChartTrack::clear()
{
    *this = ChartTrack(m_pyramid.scale());
}

void ChartTrack::setScale(ChartScaleKind scale)
{
    if (scale == m_pyramid.scale()) {
        return;
    }
    ChartTrack other(scale, firstOrdinal());
    other.m_points.reserve(size());
    for (const ChartPoint &point : points()) {
        other.append(point);
    }
    *this = std::move(other);
}

std::optional<ChartTrack::Extent> ChartTrack::extent() const
{
    std::optional<Extent> extent;
    walk(
        [&extent](const ChartPyramid::Block &block, int, std::uint64_t ordinal) {
            widen(extent, block, ordinal);
            return true;
        },
        [this, &extent](std::uint64_t first, std::uint64_t end) {
            for (std::uint64_t ordinal = first; ordinal < end; ++ordinal) {
                widen(extent, blockOf(at(ordinal), canDraw(ordinal)), ordinal);
            }
        });
    return extent;
}

std::optional<ChartTrack::Extent> ChartTrack::extent(ChartRange steps) const
{
    std::optional<Extent> extent;
    walk(
        [&extent, steps](const ChartPyramid::Block &block, int, std::uint64_t ordinal) {
            const auto first = static_cast<double>(block.firstStep);
            const auto last = static_cast<double>(block.lastStep);
            if (first >= steps.low && last <= steps.high) {
                widen(extent, block, ordinal);
                return true;
            }
            return last < steps.low || first > steps.high;
        },
        [this, &extent, steps](std::uint64_t begin, std::uint64_t end) {
            for (std::uint64_t ordinal = begin; ordinal < end; ++ordinal) {
                const auto step = static_cast<double>(at(ordinal).step);
                if (step >= steps.low && step <= steps.high) {
                    widen(extent, blockOf(at(ordinal), canDraw(ordinal)), ordinal);
                }
            }
        });
    return extent;
}

} // namespace zorel::ui::kit
