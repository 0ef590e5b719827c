#pragma once

#include "ui/kit/ChartProjection.h"
#include "ui/kit/ChartTrack.h"

#include <QPointF>

#include <cstdint>
#include <optional>

namespace zorel::ui::kit {

/// The point to show for a position in the plot: of those in the nearest column of pixels the one nearest in
/// height. None where no point can be drawn.
std::optional<std::uint64_t> nearestPoint(const ChartTrack &track, const ChartProjection &projection,
                                          QPointF position);

/// The point whose step is nearest; of several the newest. None where no point can be drawn.
std::optional<std::uint64_t> nearestStep(const ChartTrack &track, double step);

} // namespace zorel::ui::kit
