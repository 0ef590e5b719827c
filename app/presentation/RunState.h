#pragma once

#include <QString>

#include <cstdint>

namespace zorel::app::presentation {

/// Where a run stands, as far as the screens tell states apart. A state that the training scripts made up is
/// `other`.
enum class RunState : std::uint8_t {
    idle,
    starting,
    preparing,
    running,
    paused,
    stopping,
    done,
    error,
    other
};

/// The state of a status event's text, which must match exactly.
RunState runState(const QString &text);
/// "Idle", "Running", …; a text that names no known state stays as it is.
QString runStateTitle(const QString &text);
/// Whether data is being prepared or a model trained, or the run has yet to come to its stop.
bool isUnderWay(RunState state);

} // namespace zorel::app::presentation
