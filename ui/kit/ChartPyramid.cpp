#include "ui/kit/ChartPyramid.h"

#include <algorithm>

namespace zorel::ui::kit {

ChartPyramid::ChartPyramid(ChartScaleKind scale, std::uint64_t first)
    : m_scale(scale)
    , m_first(first)
{
    // The blocks that would also hold earlier points are counted as begun; they are never handed out.
    std::uint64_t part = 1;
    for (int number = 0; number < levelCount; ++number) {
        Level &level = m_levels[static_cast<std::size_t>(number)];
        level.firstNumber = first / pointsPerBlock(number);
        level.openPoints = static_cast<std::uint32_t>(first % pointsPerBlock(number) / part * part);
        part = pointsPerBlock(number);
    }
}

void ChartPyramid::append(ChartPoint point)
{
    const bool drawn = canDraw(m_scale, point.value);
    Block block{point.value, point.value, point.step, point.step, 0, 0, drawn, !drawn, !drawn};
    std::uint32_t points = 1;
    for (Level &level : m_levels) {
        merge(level, block, points);
        points *= 1U << bitsPerLevel;
        if (level.openPoints < points) {
            return;
        }
        block = level.open;
        level.blocks.push_back(level.open);
        level.openPoints = 0;
    }
}

void ChartPyramid::merge(Level &level, const Block &block, std::uint32_t points)
{
    Block &open = level.open;
    if (level.openPoints == 0) {
        open = block;
        level.openPoints = points;
        return;
    }
    open.firstStep = std::min(open.firstStep, block.firstStep);
    open.lastStep = std::max(open.lastStep, block.lastStep);
    open.endsWithGap = block.endsWithGap;
    if (block.hasValues) {
        if (!open.hasValues || block.lowest < open.lowest) {
            open.lowest = block.lowest;
            open.lowestAt = level.openPoints + block.lowestAt;
        }
        if (!open.hasValues || block.highest > open.highest) {
            open.highest = block.highest;
            open.highestAt = level.openPoints + block.highestAt;
        }
        open.hasValues = true;
    }
    level.openPoints += points;
}

void ChartPyramid::dropBefore(std::uint64_t ordinal)
{
    m_first = std::max(m_first, ordinal);
    for (int number = 0; number < levelCount; ++number) {
        Level &level = m_levels[static_cast<std::size_t>(number)];
        const std::uint64_t firstWhole =
            (m_first + pointsPerBlock(number) - 1) / pointsPerBlock(number) - level.firstNumber;
        const std::uint64_t dead = std::min<std::uint64_t>(firstWhole, level.blocks.size());
        // Moving the rest to the front pays off once as much is dead as alive.
        constexpr std::uint64_t fewest = 64;
        if (dead >= fewest && dead * 2 >= level.blocks.size()) {
            level.blocks.erase(level.blocks.begin(),
                               level.blocks.begin() + static_cast<std::ptrdiff_t>(dead));
            level.firstNumber += dead;
        }
    }
}

} // namespace zorel::ui::kit
