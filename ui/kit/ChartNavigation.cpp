#include "ui/kit/ChartNavigation.h"

#include "ui/kit/ChartSearch.h"

#include <algorithm>

namespace zorel::ui::kit {

namespace {

const ChartTrack &trackOf(const ChartContent &content, int series)
{
    return content.series[static_cast<std::size_t>(series)].raw();
}

/// The next ordinal that can be drawn, the given one included.
std::optional<std::uint64_t> drawable(const ChartTrack &track, std::uint64_t from, ChartDirection direction)
{
    // Going back below ordinal 0 comes out at the other end of the numbers.
    for (std::uint64_t at = from; at >= track.firstOrdinal() && at < track.endOrdinal();
         at += static_cast<std::uint64_t>(direction)) {
        if (track.canDraw(at)) {
            return at;
        }
    }
    return std::nullopt;
}

ChartDirection opposite(ChartDirection direction)
{
    return direction == ChartDirection::Back ? ChartDirection::Forward : ChartDirection::Back;
}

std::optional<ChartMark> markAt(int series, std::optional<std::uint64_t> ordinal)
{
    return ordinal ? std::optional(ChartMark{series, *ordinal}) : std::nullopt;
}

} // namespace

std::optional<ChartMark> neighbourOf(const ChartContent &content, ChartMark mark, ChartDirection direction,
                                     std::size_t count)
{
    const ChartTrack &track = trackOf(content, mark.series);
    const bool isForward = direction == ChartDirection::Forward;
    const std::uint64_t room =
        isForward ? track.endOrdinal() - 1 - mark.ordinal : mark.ordinal - track.firstOrdinal();
    const std::uint64_t way = std::min<std::uint64_t>(count, room);
    const std::uint64_t target = isForward ? mark.ordinal + way : mark.ordinal - way;
    auto found = drawable(track, target, direction);
    if (!found) {
        found = drawable(track, target, opposite(direction));
    }
    return found == mark.ordinal ? std::nullopt : markAt(mark.series, found);
}

std::optional<ChartMark> endOf(const ChartContent &content, int series, ChartDirection direction)
{
    const ChartTrack &track = trackOf(content, series);
    if (track.isEmpty()) {
        return std::nullopt;
    }
    const std::uint64_t end =
        direction == ChartDirection::Back ? track.firstOrdinal() : track.endOrdinal() - 1;
    return markAt(series, drawable(track, end, opposite(direction)));
}

std::optional<ChartMark> entryFrom(const ChartContent &content, ChartDirection direction)
{
    const ChartRange steps = content.view.steps();
    const double edge = direction == ChartDirection::Forward ? steps.low : steps.high;
    for (int series = 0; series < static_cast<int>(content.series.size()); ++series) {
        auto mark = content.view.isZoomed() ? markAt(series, nearestStep(trackOf(content, series), edge))
                                            : endOf(content, series, opposite(direction));
        if (mark) {
            return mark;
        }
    }
    return std::nullopt;
}

std::optional<ChartMark> acrossFrom(const ChartContent &content, ChartMark mark, ChartDirection direction)
{
    const int count = static_cast<int>(content.series.size());
    for (int series = mark.series + static_cast<int>(direction); series >= 0 && series < count;
         series += static_cast<int>(direction)) {
        const auto step = static_cast<double>(content.at(mark).step);
        if (const auto found = nearestStep(trackOf(content, series), step)) {
            return ChartMark{series, *found};
        }
    }
    return std::nullopt;
}

} // namespace zorel::ui::kit
