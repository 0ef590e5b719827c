#include "ui/kit/ChartCrosshair.h"

#include "ui/kit/ChartNavigation.h"
#include "ui/kit/ChartSearch.h"

#include <cmath>
#include <limits>

namespace zorel::ui::kit {

namespace {

std::optional<ChartMark> nearestOfAll(const ChartContent &content, const ChartProjection &projection,
                                      QPointF position)
{
    std::optional<ChartMark> best;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < content.series.size(); ++i) {
        const ChartTrack &track = content.series[i].raw();
        const auto found = nearestPoint(track, projection, position);
        if (!found) {
            continue;
        }
        const ChartPoint &point = track.at(*found);
        const double away = std::hypot(projection.x(static_cast<double>(point.step)) - position.x(),
                                       projection.y(point.value) - position.y());
        if (away < least) {
            least = away;
            best = ChartMark{static_cast<int>(i), *found};
        }
    }
    return best;
}

} // namespace

void ChartCrosshair::leave()
{
    if (isFollowing()) {
        hide();
    }
}

std::optional<ChartMark> ChartCrosshair::mark(const ChartContent &content,
                                              const ChartProjection &projection) const
{
    if (const auto *position = std::get_if<QPointF>(&m_target)) {
        return nearestOfAll(content, projection, *position);
    }
    const auto *chosen = std::get_if<ChartMark>(&m_target);
    if (chosen == nullptr || chosen->series >= static_cast<int>(content.series.size())) {
        return std::nullopt;
    }
    const ChartTrack &track = content.series[static_cast<std::size_t>(chosen->series)].raw();
    if (chosen->ordinal < track.firstOrdinal()) {
        return endOf(content, chosen->series, ChartDirection::Back);
    }
    if (content.holds(*chosen) && track.canDraw(chosen->ordinal)) {
        return *chosen;
    }
    return std::nullopt;
}

} // namespace zorel::ui::kit
