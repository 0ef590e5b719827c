#pragma once

#include "ui/kit/ChartPoint.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zorel::ui::kit {

/// Lowest and highest value of every 16, 256, 4096, ... neighbouring points of a growing list, so that a
/// chart of any length is drawn without reading every point and without losing a spike. A point is known by
/// its ordinal: the number of points that were appended before it, also after older ones were dropped.
class ChartPyramid
{
public:
    static constexpr int levelCount = 5;
    static constexpr int bitsPerLevel = 4;

    struct Block
    {
        double lowest = 0;          ///< of the values that can be drawn; meaningless when there are none
        double highest = 0;         ///< likewise
        std::int64_t firstStep = 0; ///< the smallest step of all points, not that of the first point
        std::int64_t lastStep = 0;  ///< the largest step of all points
        std::uint32_t lowestAt = 0; ///< counted from the block's first point
        std::uint32_t highestAt = 0;
        bool hasValues = false;
        bool startsWithGap = false; ///< the first point cannot be drawn
        bool endsWithGap = false;   ///< the last point cannot be drawn
    };

    /// The scale decides which values can be drawn: finite ones, for a logarithmic scale those above zero.
    /// The first point appended gets the ordinal `first`.
    explicit ChartPyramid(ChartScaleKind scale, std::uint64_t first = 0);

    static bool canDraw(ChartScaleKind scale, double value)
    {
        return std::isfinite(value) && (scale == ChartScaleKind::Linear || value > 0);
    }
    static constexpr std::uint64_t pointsPerBlock(int level)
    {
        return std::uint64_t{1} << (bitsPerLevel * (level + 1));
    }

    ChartScaleKind scale() const { return m_scale; }
    /// O(1).
    void append(ChartPoint point);
    /// Forgets blocks that hold points before `ordinal`. O(1) amortised over the points dropped.
    void dropBefore(std::uint64_t ordinal);

    /// The block that starts at `ordinal`, a multiple of its size; null when a point of it is still to come
    /// or was dropped.
    const Block *blockAt(int number, std::uint64_t ordinal) const
    {
        const Level &level = m_levels[static_cast<std::size_t>(number)];
        const std::uint64_t position = ordinal / pointsPerBlock(number) - level.firstNumber;
        return ordinal >= m_first && position < level.blocks.size() ? &level.blocks[position] : nullptr;
    }

private:
    struct Level
    {
        std::vector<Block> blocks;
        std::uint64_t firstNumber = 0; ///< the number of blocks[0], counted from the start of the list
        Block open;                    ///< collects until it is complete
        std::uint32_t openPoints = 0;
    };

    static void merge(Level &level, const Block &block, std::uint32_t points);

    ChartScaleKind m_scale;
    std::uint64_t m_first;
    std::array<Level, levelCount> m_levels;
};

} // namespace zorel::ui::kit
