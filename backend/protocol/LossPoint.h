#pragma once

#include <cstdint>

namespace zorel::backend::protocol {

/// One point of a loss curve. `id` is drawn from a process-wide sequence of unique random-looking numbers
/// when the point is created, from any thread, and is never written anywhere; a copy keeps it.
struct LossPoint
{
    LossPoint(std::int64_t pointStep, double pointLoss);

    std::uint64_t id;
    std::int64_t step;
    double loss;

    bool operator==(const LossPoint &) const = default;
};

} // namespace zorel::backend::protocol
