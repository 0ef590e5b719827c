#include "library/CurveSummary.h"

#include <algorithm>

namespace zorel::library {

std::optional<CurveSummary> summary(const std::vector<backend::protocol::LossPoint> &curve)
{
    using backend::protocol::LossPoint;
    if (curve.empty()) {
        return std::nullopt;
    }
    const auto [first, last] = std::ranges::minmax_element(curve, {}, &LossPoint::step);
    const auto lowest = std::ranges::min_element(curve, {}, &LossPoint::loss);
    return CurveSummary{static_cast<std::int64_t>(curve.size()),
                        {first->step, last->step},
                        first->loss,
                        last->loss,
                        lowest->loss,
                        lowest->step};
}

std::optional<StepRange> commonSteps(const CurveSummary &baseline, const CurveSummary &candidate)
{
    const StepRange common{std::max(baseline.steps.first, candidate.steps.first),
                           std::min(baseline.steps.last, candidate.steps.last)};
    return common.first <= common.last ? std::optional(common) : std::nullopt;
}

} // namespace zorel::library
