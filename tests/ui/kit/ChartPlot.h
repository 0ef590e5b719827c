#pragma once

#include "ui/kit/ChartProjection.h"
#include "ui/kit/ChartTrack.h"

#include <QSize>

#include <limits>

namespace zorel::tests {

inline constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr QSize plotSize(300, 100);

/// All of the track in a plot of that size.
inline ui::kit::ChartProjection projectionOf(const ui::kit::ChartTrack &track)
{
    using namespace ui::kit;
    const auto extent = track.extent();
    return {ChartScale(extent->steps),
            ChartScale(roomAround(extent->values, track.pyramid().scale()), track.pyramid().scale()),
            plotSize};
}

} // namespace zorel::tests
