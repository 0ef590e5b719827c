#pragma once

#include "backend/protocol/ArchivedModel.h"
#include "backend/protocol/TrainStatusPayload.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <optional>

namespace zorel::backend::bridge {
class BackendController;
}

namespace zorel::terminal {

/// One training run from launching the sidecar to its end: waits until it is ready, starts the run, follows
/// it until it is archived, stopped or has failed, and then has the sidecar quit. Prints nothing.
class TerminalRun : public QObject
{
    Q_OBJECT

public:
    enum class Phase { notStarted, waitingForBackend, training, ending, ended };
    enum class Outcome { archived, stopped, failed, notStartable };

    struct Request
    {
        std::optional<std::int64_t> steps; ///< the sidecar's own default when there is none
        bool resume = false;
    };

    struct Limits
    {
        /// How long a sidecar that was asked to quit may take.
        std::chrono::milliseconds quitting = std::chrono::seconds(120);
        /// How long after an error a sidecar that trains nothing may still take up the run.
        std::chrono::milliseconds refusal = std::chrono::seconds(5);
    };

    /// `controller` must outlive this object and be used by nobody else.
    TerminalRun(backend::bridge::BackendController &controller, const Request &request, const Limits &limits);

    Phase phase() const { return m_phase; }
    /// Valid once the phase is `ending`.
    Outcome outcome() const { return m_outcome; }
    const std::optional<backend::protocol::ArchivedModel> &archive() const { return m_archive; }
    /// Why the run failed or could not be started, unless an error of the backend has said it already;
    /// otherwise empty.
    const QString &failure() const { return m_failure; }
    /// Whether the sidecar had not ended yet when this object stopped waiting for it.
    bool leftBackendRunning() const { return m_leftBackendRunning; }
    /// The last status that belongs to the training itself; its step is 0 when nothing was trained.
    const backend::protocol::TrainStatusPayload &lastTrained() const { return m_lastTrained; }

    /// Launches the sidecar. Blocks while interpreters are probed.
    void start();
    /// Has the sidecar stop and quit. Further calls change nothing.
    void stop();
    /// Kills the sidecar and ends.
    void stopAtOnce();

Q_SIGNALS:
    void phaseChanged();
    /// Emitted once.
    void ended();

private:
    void beginTraining();
    void followStatus();
    void followArchive();
    void handleError();
    void handleDone();
    void handleExit(int status);
    bool isUnderWay() const;
    void endWithoutArchive();
    void fail(const QString &failure);
    void quitBackend(Outcome outcome);
    void end();
    void setPhase(Phase phase);

    backend::bridge::BackendController &m_controller;
    Request m_request;
    Limits m_limits;
    QTimer m_quitLimit;
    QTimer m_refusalLimit;

    Phase m_phase = Phase::notStarted;
    Outcome m_outcome = Outcome::failed;
    bool m_stopRequested = false;
    bool m_errorReported = false;
    bool m_wasUnderWay = false;
    bool m_leftBackendRunning = false;
    std::optional<backend::protocol::ArchivedModel> m_archive;
    backend::protocol::TrainStatusPayload m_lastTrained;
    QString m_failure;
};

} // namespace zorel::terminal
