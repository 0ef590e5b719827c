#pragma once

#include "ui/kit/ChartPoint.h"

#include <optional>

namespace zorel::ui::kit {

/// Which part of its data a chart shows: everything, or what the user zoomed to. A zoom stays where it is
/// while points are appended.
class ChartView
{
public:
    /// What there is to see. A zoom never leaves it.
    void setAllSteps(ChartRange steps);

    bool isZoomed() const { return m_steps || m_values; }
    ChartRange steps() const { return m_steps.value_or(m_all); }
    /// None: the values of the steps shown decide.
    std::optional<ChartRange> values() const { return m_values; }

    /// Without `values` these follow the steps shown. A range that would show less than one step, or reaches
    /// beyond what there is, is moved to what can be shown.
    void zoomTo(ChartRange steps, std::optional<ChartRange> values = std::nullopt);
    /// Shows `factor` times as many steps, with `step` staying at its place; all of them ends the zoom.
    void zoomBy(double factor, double step);
    /// Moves a zoom so far that it shows the step.
    void show(double step);
    void reset();

private:
    ChartRange inside(ChartRange steps) const;

    ChartRange m_all{0, 1};
    std::optional<ChartRange> m_steps;
    std::optional<ChartRange> m_values;
};

} // namespace zorel::ui::kit
