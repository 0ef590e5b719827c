#pragma once

#include "ui/kit/ChartLayout.h"

class QPainter;
class QPalette;

namespace zorel::ui::kit {

/// The marked point with lines to both axes, and a box beside it that gives the step and every series' value
/// there. A series whose nearest point has another step is given with that step; one that does not reach the
/// marked step is not given.
void paintCrosshair(QPainter &painter, const ChartContent &content, const ChartLayout &layout, ChartMark mark,
                    const QPalette &palette, const QLocale &locale);

} // namespace zorel::ui::kit
