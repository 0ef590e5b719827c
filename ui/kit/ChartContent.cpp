#include "ui/kit/ChartContent.h"

#include "ui/kit/ChartScale.h"

#include <algorithm>

namespace zorel::ui::kit {

namespace {

void widen(std::optional<ChartRange> &range, ChartRange other)
{
    range = range ? ChartRange{std::min(range->low, other.low), std::max(range->high, other.high)} : other;
}

void widen(std::optional<ChartRange> &values, const ChartTrack *track, std::optional<ChartRange> steps)
{
    if (track == nullptr) {
        return;
    }
    const auto extent = steps ? track->extent(*steps) : track->extent();
    if (extent && extent->hasValues) {
        widen(values, extent->values);
    }
}

} // namespace

bool ChartContent::isEmpty() const
{
    return pointCount() == 0;
}

std::size_t ChartContent::pointCount() const
{
    std::size_t count = 0;
    for (const ChartSeries &one : series) {
        count += one.raw().size();
    }
    return count;
}

ChartRange ChartContent::allSteps() const
{
    std::optional<ChartRange> all;
    for (const ChartSeries &one : series) {
        if (const auto extent = one.raw().extent()) {
            widen(all, extent->steps);
        }
    }
    if (!all) {
        return {0, 1};
    }
    return all->low < all->high ? *all : ChartRange{all->low - 0.5, all->high + 0.5};
}

ChartRange ChartContent::shownValues() const
{
    if (view.values()) {
        return *view.values();
    }
    std::optional<ChartRange> values;
    for (const ChartSeries &one : series) {
        widen(values, &one.raw(), view.steps());
        widen(values, one.smoothed(), view.steps());
    }
    if (!values) {
        // Between two points there is a line all the same.
        for (const ChartSeries &one : series) {
            widen(values, &one.raw(), std::nullopt);
        }
    }
    return roomAround(values.value_or(ChartRange{0.1, 1}), scale);
}

QString ChartContent::nameOf(int number) const
{
    const QString &name = series[static_cast<std::size_t>(number)].name();
    return name.isEmpty() ? valueTitle : name;
}

std::size_t ChartContent::notPositiveCount() const
{
    std::size_t omitted = 0;
    for (const ChartSeries &one : series) {
        omitted += one.raw().omittedCount();
    }
    return omitted - notFiniteCount();
}

std::size_t ChartContent::notFiniteCount() const
{
    std::size_t count = 0;
    for (const ChartSeries &one : series) {
        count += one.notFiniteCount();
    }
    return count;
}

const ChartPoint &ChartContent::at(ChartMark mark) const
{
    return series[static_cast<std::size_t>(mark.series)].raw().at(mark.ordinal);
}

bool ChartContent::holds(ChartMark mark) const
{
    if (mark.series < 0 || static_cast<std::size_t>(mark.series) >= series.size()) {
        return false;
    }
    const ChartTrack &track = series[static_cast<std::size_t>(mark.series)].raw();
    return mark.ordinal >= track.firstOrdinal() && mark.ordinal < track.endOrdinal();
}

} // namespace zorel::ui::kit
