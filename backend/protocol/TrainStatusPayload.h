#pragma once

#include <QString>

#include <cstdint>
#include <optional>

namespace zorel::backend::protocol {

/// One "status" event: where the run stands. `state` is carried as it was sent; the application interprets
/// "idle", "starting", "preparing", "running", "paused", "stopping", "done" and "error".
struct TrainStatusPayload
{
    QString state;
    std::int64_t step = 0;
    std::int64_t maxSteps = 0;
    double loss = 0;
    double lr = 0;
    double gradNorm = 0;
    double tokensPerSec = 0;
    double elapsedS = 0; ///< seconds
    std::optional<double> valLoss;
    std::optional<QString> error;
    double prepProgress = 0; ///< fraction of the data preparation done, 0 to 1
    QString prepDetail;
    double prepElapsedS = 0; ///< seconds
    double prepEtaS = 0;     ///< seconds

    bool operator==(const TrainStatusPayload &) const = default;

    /// Nothing is being trained: every number is 0.
    static TrainStatusPayload idle(std::int64_t maxSteps)
    {
        TrainStatusPayload status;
        status.state = QStringLiteral("idle");
        status.maxSteps = maxSteps;
        return status;
    }
};

} // namespace zorel::backend::protocol
