#pragma once

#include "backend/protocol/TrainStatusPayload.h"

#include <deque>
#include <optional>

namespace zorel::terminal {

/// Estimates how long a run still takes from its pace of late, so that neither warming up nor a resumed run's
/// past counts.
class RemainingTime
{
public:
    /// How much of the run's own time the pace is taken from, in seconds.
    static constexpr double window = 60;

    void update(const backend::protocol::TrainStatusPayload &status);
    /// Nothing while no pace is known yet.
    std::optional<double> seconds() const;

private:
    struct Sample
    {
        std::int64_t step;
        double elapsedS;
    };

    std::deque<Sample> m_samples; ///< of uninterrupted running, oldest first
    std::int64_t m_maxSteps = 0;
};

} // namespace zorel::terminal
