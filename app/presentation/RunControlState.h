#pragma once

#include "app/settings/ModelFamily.h"

#include <QString>

#include <cstdint>

namespace zorel::app::presentation {

/// What the run controls offer and say at a moment.
struct RunControlState
{
    /// What the one button for both does when it is pressed.
    enum class PauseAction : std::uint8_t { pause, resume };

    bool canStart = false;
    bool canPause = false;
    bool canStop = false;
    PauseAction pauseAction = PauseAction::pause;
    QString startLabel;
    QString statusLine; ///< empty when there is nothing to say

    bool operator==(const RunControlState &) const = default;
};

/// What is known about the run and its backend.
struct RunFacts
{
    bool ready = false; ///< whether the training scripts run and have announced themselves
    QString state;      ///< as the status event has it
    std::int64_t step = 0;
    std::int64_t maxSteps = 0;
    QString error; ///< empty when the status has none
    settings::ModelFamily family = settings::ModelFamily::textLanguage;
};

/// A backend that is gone leaves its last state behind: without `ready` no run is under way, whatever `state`
/// says, so that Start can bring the backend back.
RunControlState runControlState(const RunFacts &facts);

} // namespace zorel::app::presentation
