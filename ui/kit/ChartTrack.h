#pragma once

#include "ui/kit/ChartPyramid.h"

#include <algorithm>
#include <optional>
#include <span>

namespace zorel::ui::kit {

/// A list of points in the order they came, which may go back in steps, with what a chart asks about it in
/// far less than one look at each point. Points are known by their ordinals, see ChartPyramid.
class ChartTrack
{
public:
    struct Extent
    {
        ChartRange steps;         ///< of all points
        ChartRange values;        ///< of those that can be drawn; meaningless when there are none
        std::uint64_t lowest = 0; ///< ordinal of the first of the lowest values
        bool hasValues = false;
    };

    /// The first point appended gets the ordinal `first`.
    explicit ChartTrack(ChartScaleKind scale = ChartScaleKind::Linear, std::uint64_t first = 0);

    /// O(1) amortised.
    void append(ChartPoint point);
    /// O(1) amortised over the points dropped.
    void dropOldest(std::size_t count);
    /// Ordinals start at 0 again.
    void clear();
    /// Reads every point once where the scale is another.
    void setScale(ChartScaleKind scale);

    std::size_t size() const { return m_points.size() - m_dead; }
    bool isEmpty() const { return size() == 0; }
    std::uint64_t firstOrdinal() const { return m_base + m_dead; }
    std::uint64_t endOrdinal() const { return m_base + m_points.size(); }
    const ChartPoint &at(std::uint64_t ordinal) const { return m_points[ordinal - m_base]; }
    bool canDraw(std::uint64_t ordinal) const
    {
        return ChartPyramid::canDraw(m_pyramid.scale(), at(ordinal).value);
    }
    /// With the dropped points whose place is not given back yet: less than as many again.
    std::size_t heldCount() const { return m_points.size(); }
    /// Oldest first.
    std::span<const ChartPoint> points() const { return std::span(m_points).subspan(m_dead); }
    /// How many of the points cannot be drawn on this scale.
    std::size_t omittedCount() const { return m_omitted; }
    /// How often a step is smaller than the one before.
    std::size_t turnCount() const { return m_turns; }

    /// Of all points, or of those whose steps lie in `steps`, borders included; none when there are no such
    /// points.
    std::optional<Extent> extent() const;
    std::optional<Extent> extent(ChartRange steps) const;

    /// Walks over the list in order. `takeBlock(block, level, firstOrdinal)` says whether it has what it
    /// needs; where it has not, the block's parts follow, down to `takePoints(firstOrdinal, endOrdinal)`.
    template <typename TakeBlock, typename TakePoints>
    void walk(TakeBlock &&takeBlock, TakePoints &&takePoints) const
    {
        constexpr std::uint64_t smallest = ChartPyramid::pointsPerBlock(0);
        for (std::uint64_t at = firstOrdinal(); at < endOrdinal();) {
            if (const std::uint64_t taken = takeLargestBlock(at, takeBlock); taken > 0) {
                at += taken;
                continue;
            }
            const std::uint64_t end = std::min(at / smallest * smallest + smallest, endOrdinal());
            takePoints(at, end);
            at = end;
        }
    }

    const ChartPyramid &pyramid() const { return m_pyramid; }

private:
    bool turnsAt(std::uint64_t ordinal) const
    {
        return ordinal > firstOrdinal() && at(ordinal).step < at(ordinal - 1).step;
    }

    /// How many points the largest block has that starts there and is taken; 0 when none is.
    template <typename TakeBlock>
    std::uint64_t takeLargestBlock(std::uint64_t ordinal, TakeBlock &takeBlock) const
    {
        for (int level = ChartPyramid::levelCount - 1; level >= 0; --level) {
            const std::uint64_t size = ChartPyramid::pointsPerBlock(level);
            if ((ordinal & (size - 1)) != 0) {
                continue;
            }
            const ChartPyramid::Block *block = m_pyramid.blockAt(level, ordinal);
            if (block != nullptr && takeBlock(*block, level, ordinal)) {
                return size;
            }
        }
        return 0;
    }

    std::vector<ChartPoint> m_points;
    std::size_t m_dead = 0; ///< dropped points that still lie before the others in m_points
    std::uint64_t m_base;   ///< ordinal of m_points[0]
    std::size_t m_omitted = 0;
    std::size_t m_turns = 0;
    ChartPyramid m_pyramid;
};

} // namespace zorel::ui::kit
