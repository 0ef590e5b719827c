#pragma once

#include "backend/protocol/LossPoint.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zorel::library {

/// Steps from the first to the last, both included.
struct StepRange
{
    std::int64_t first = 0;
    std::int64_t last = 0;

    bool operator==(const StepRange &) const = default;
};

/// A loss curve in few figures. Its points may be in any order.
struct CurveSummary
{
    std::int64_t points = 0;
    StepRange steps;
    double firstLoss = 0; ///< at the first step
    double lastLoss = 0;  ///< at the last step
    double lowestLoss = 0;
    std::int64_t lowestStep = 0; ///< where the loss was lowest first

    bool operator==(const CurveSummary &) const = default;
};

/// Nothing for a curve without points.
std::optional<CurveSummary> summary(const std::vector<backend::protocol::LossPoint> &curve);

/// The steps over which both curves have data; nothing when there are none.
std::optional<StepRange> commonSteps(const CurveSummary &baseline, const CurveSummary &candidate);

} // namespace zorel::library
