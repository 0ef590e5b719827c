#pragma once

#include <cstdint>

namespace zorel::ui::kit {

/// One point of a chart's series. Any step and any value may come: what cannot be drawn is left out.
struct ChartPoint
{
    std::int64_t step = 0;
    double value = 0;

    bool operator==(const ChartPoint &) const = default;
};

/// What a chart's axis shows, or what values lie between.
struct ChartRange
{
    double low = 0;
    double high = 0;

    bool operator==(const ChartRange &) const = default;
};

/// How values are laid out along an axis. A logarithmic one has no place for zero and below.
enum class ChartScaleKind { Linear, Logarithmic };

} // namespace zorel::ui::kit
