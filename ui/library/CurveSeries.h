#pragma once

#include "backend/protocol/LossPoint.h"

#include <QString>

#include <vector>

namespace zorel::ui::kit {
class LineChart;
}

namespace zorel::ui::library {

/// A chart of losses over steps.
kit::LineChart *makeLossChart(const QString &title);
/// Draws the points in their order as one line.
void addCurve(kit::LineChart &chart, const QString &name,
              const std::vector<backend::protocol::LossPoint> &points);
/// At least as high as given, in points, when the first `series` of its lines have something to draw; else no
/// higher than the line of text in their place.
void fitHeight(kit::LineChart &chart, int series, int height);

} // namespace zorel::ui::library
