#pragma once

#include "ui/kit/ChartProjection.h"
#include "ui/kit/ChartTrack.h"

#include <QPointF>

#include <optional>

namespace zorel::ui::kit {

class LineRaster;

/// Draws the line through the track's points, in their order, into the plot that `projection` describes. Of
/// the points that fall into one column of the raster, and follow each other, only the first, the lowest, the
/// highest and the last are handed over: the picture is the same. What cannot be drawn interrupts the line,
/// as does a step that goes back, because another run begins there.
void traceLine(const ChartTrack &track, const ChartProjection &projection, LineRaster &raster);

/// The point to show for a position in the plot: of those in the nearest column of pixels the one nearest in
/// height. None where no point can be drawn.
std::optional<std::uint64_t> nearestPoint(const ChartTrack &track, const ChartProjection &projection,
                                          QPointF position);

/// The point whose step is nearest; of several the newest. None where no point can be drawn.
std::optional<std::uint64_t> nearestStep(const ChartTrack &track, double step);

} // namespace zorel::ui::kit
