#pragma once

namespace zorel::ui::kit {

class LineChart;

/// Lets assistive technology see a LineChart as a chart with a name, a description, the point at the
/// crosshair as its value, and the titles of its axes and the legend as texts in it. Once is enough for all.
void installChartAccessibility();

/// To be called when what the chart says has changed by a key, so that it is read out.
void tellDescriptionChanged(LineChart *chart);

} // namespace zorel::ui::kit
