#pragma once

#include "ui/kit/ChartPoint.h"

namespace zorel::ui::kit {

/// Where a value lies between the two ends of an axis, and back. Any two finite ends do, also the largest
/// numbers there are; a range without a length is taken as a short one around its value.
class ChartScale
{
public:
    explicit ChartScale(ChartRange range = {0, 1}, ChartScaleKind kind = ChartScaleKind::Linear);

    ChartScaleKind kind() const { return m_kind; }
    ChartRange range() const { return m_range; }
    /// 0 at the low end, 1 at the high one, less or more beyond them, at most a million. Never NaN.
    double fraction(double value) const;
    double value(double fraction) const;

private:
    ChartScaleKind m_kind;
    ChartRange m_range;
    double m_low = 0;    ///< half of the low end, or its logarithm
    double m_factor = 1; ///< from there to the fraction
};

/// The range in which values from `data.low` to `data.high` are shown: some room around them, none below zero
/// for values that are not negative. Equal values get a range around them; on a logarithmic scale both ends
/// are above zero.
ChartRange roomAround(ChartRange data, ChartScaleKind kind);

} // namespace zorel::ui::kit
