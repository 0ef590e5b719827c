#pragma once

#include "ui/kit/ChartScale.h"

#include <QSizeF>

namespace zorel::ui::kit {

/// From steps and values to positions in a plot, and back. The origin is the plot's top left corner.
struct ChartProjection
{
    ChartScale steps;
    ChartScale values;
    QSizeF size;

    double x(double step) const { return steps.fraction(step) * size.width(); }
    double y(double value) const { return (1 - values.fraction(value)) * size.height(); }
    double stepAt(double x) const { return steps.value(x / size.width()); }
    double valueAt(double y) const { return values.value(1 - y / size.height()); }
};

} // namespace zorel::ui::kit
