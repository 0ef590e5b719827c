#include "ui/kit/ChartSearch.h"

#include <cmath>
#include <queue>
#include <tuple>
#include <utility>

namespace zorel::ui::kit {

namespace {

/// How far a point, or at least all points of a block, are from what is looked for.
struct Candidate
{
    double distance = 0;
    double secondDistance = 0;
    std::uint64_t ordinal = 0;
    int level = 0; ///< of a block; -1 for a point

    std::uint64_t end() const { return ordinal + (level < 0 ? 1 : ChartPyramid::pointsPerBlock(level)); }

    /// Of those as near the one that holds the newest point: the search goes straight down to it and does not
    /// read all that are as near.
    friend bool operator<(const Candidate &left, const Candidate &right)
    {
        return std::tuple(right.distance, right.secondDistance, left.end()) <
               std::tuple(left.distance, left.secondDistance, right.end());
    }
};

/// The nearest point by a measure that gives for the bounds of a block, or of a point, how far they are: the
/// first distance counts, among equal ones the second, among those the newest point.
template <typename Measure>
std::optional<std::uint64_t> nearest(const ChartTrack &track, Measure &&measure)
{
    std::priority_queue<Candidate> candidates;
    const auto add = [&](const ChartPyramid::Block &block, int level, std::uint64_t ordinal) {
        if (block.hasValues) {
            const auto [first, second] = measure(block);
            candidates.push({first, second, ordinal, level});
        }
        return true;
    };
    const auto addPoint = [&](std::uint64_t ordinal) {
        const ChartPoint &point = track.at(ordinal);
        add({point.value, point.value, point.step, point.step, 0, 0, track.canDraw(ordinal), false, false},
            -1, ordinal);
    };
    track.walk(add, [&](std::uint64_t first, std::uint64_t end) {
        for (std::uint64_t ordinal = first; ordinal < end; ++ordinal) {
            addPoint(ordinal);
        }
    });
    while (!candidates.empty()) {
        const Candidate best = candidates.top();
        candidates.pop();
        if (best.level < 0) {
            return best.ordinal;
        }
        const std::uint64_t end = best.ordinal + ChartPyramid::pointsPerBlock(best.level);
        const std::uint64_t part = best.level == 0 ? 1 : ChartPyramid::pointsPerBlock(best.level - 1);
        for (std::uint64_t ordinal = best.ordinal; ordinal < end; ordinal += part) {
            if (best.level == 0) {
                addPoint(ordinal);
            } else if (const auto *block = track.pyramid().blockAt(best.level - 1, ordinal)) {
                add(*block, best.level - 1, ordinal);
            }
        }
    }
    return std::nullopt;
}

double outside(double position, double low, double high)
{
    return position < low ? low - position : position > high ? position - high : 0;
}

} // namespace

std::optional<std::uint64_t> nearestPoint(const ChartTrack &track, const ChartProjection &projection,
                                          QPointF position)
{
    return nearest(track, [&](const ChartPyramid::Block &block) {
        const double beside = outside(position.x(), projection.x(static_cast<double>(block.firstStep)),
                                      projection.x(static_cast<double>(block.lastStep)));
        const double height = outside(position.y(), projection.y(block.highest), projection.y(block.lowest));
        return std::pair(std::floor(beside), height);
    });
}

std::optional<std::uint64_t> nearestStep(const ChartTrack &track, double step)
{
    return nearest(track, [step](const ChartPyramid::Block &block) {
        return std::pair(
            outside(step, static_cast<double>(block.firstStep), static_cast<double>(block.lastStep)), 0.0);
    });
}

} // namespace zorel::ui::kit
