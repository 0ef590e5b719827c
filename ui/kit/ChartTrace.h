#pragma once

#include "ui/kit/ChartProjection.h"
#include "ui/kit/ChartTrack.h"

namespace zorel::ui::kit {

class LineRaster;

/// Draws the line through the track's points, in their order, into the plot that `projection` describes. Of
/// the points that fall into one column of the raster, and follow each other, only the first, the lowest, the
/// highest and the last are handed over: the picture is the same. What cannot be drawn interrupts the line,
/// as does a step that goes back, because another run begins there.
void traceLine(const ChartTrack &track, const ChartProjection &projection, LineRaster &raster);

} // namespace zorel::ui::kit
