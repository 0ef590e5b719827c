#pragma once

#include "ui/kit/ChartPoint.h"

#include <optional>

namespace zorel::ui::kit {

/// Exponential smoothing that looks back only: a value once given never changes. The average of the values
/// so far, each `weight` times as heavy as the one after it; the first value stands for itself. Starts anew
/// where the steps go back, because another run begins there.
class ChartSmoothing
{
public:
    static constexpr double greatestWeight = 0.999;

    /// `weight` is held between 0, no smoothing, and `greatestWeight`.
    explicit ChartSmoothing(double weight);

    double weight() const { return m_weight; }
    /// The smoothed value of the next point. One that is not finite is handed back and leaves no trace.
    double next(ChartPoint point);

private:
    double m_weight;
    double m_average = 0;
    double m_share = 0; ///< how heavy the values so far are together
    std::optional<std::int64_t> m_lastStep;
};

} // namespace zorel::ui::kit
