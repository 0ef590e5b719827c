#pragma once

#include "ui/kit/ChartContent.h"

namespace zorel::ui::kit {

// Where the crosshair goes from a point. Points that cannot be drawn are passed over; none where there is no
// other point.

enum class ChartDirection { Back = -1, Forward = 1 };

/// `count` points further along the list, or as far as it goes.
std::optional<ChartMark> neighbourOf(const ChartContent &content, ChartMark mark, ChartDirection direction,
                                     std::size_t count);
/// The oldest point of a series, or the newest.
std::optional<ChartMark> endOf(const ChartContent &content, int series, ChartDirection direction);
/// Where to begin when there is no crosshair yet: seen from the given direction the first point shown of the
/// first series that has one.
std::optional<ChartMark> entryFrom(const ChartContent &content, ChartDirection direction);
/// The point with the nearest step in the next series.
std::optional<ChartMark> acrossFrom(const ChartContent &content, ChartMark mark, ChartDirection direction);

} // namespace zorel::ui::kit
