#pragma once

#include "app/settings/ModelFamily.h"
#include "backend/protocol/TrainStatusPayload.h"
#include "terminal/TerminalRun.h"

#include <optional>

namespace zorel::terminal {

/// Everything that a renderer needs to show where a run stands.
struct RunProgress
{
    TerminalRun::Phase phase = TerminalRun::Phase::notStarted;
    app::settings::ModelFamily family = app::settings::ModelFamily::textLanguage;
    backend::protocol::TrainStatusPayload status;
    std::optional<double> remainingS; ///< of the training, in seconds

    bool operator==(const RunProgress &) const = default;

    bool isPreparing() const { return status.state == QLatin1String("preparing"); }
    /// Whether steps are being made or have been, so that their figures mean something.
    bool hasSteps() const;
    /// Of the preparation or of the training, 0 to 1.
    double fraction() const;
    int percent() const;
};

/// What is going on, in a word or two: "Preparing data", "Training".
QString stateText(const RunProgress &progress);

} // namespace zorel::terminal
