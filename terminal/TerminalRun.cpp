#include "terminal/TerminalRun.h"

#include "backend/bridge/BackendController.h"

#include <algorithm>
#include <array>

namespace zorel::terminal {

using backend::bridge::BackendController;

TerminalRun::TerminalRun(BackendController &controller, const Request &request, const Limits &limits)
    : m_controller(controller)
    , m_request(request)
    , m_limits(limits)
{
    m_quitLimit.setSingleShot(true);
    connect(&m_quitLimit, &QTimer::timeout, this, [this] {
        m_leftBackendRunning = true;
        end();
    });
    m_refusalLimit.setSingleShot(true);
    connect(&m_refusalLimit, &QTimer::timeout, this, &TerminalRun::endWithoutArchive);

    // What the backend says along with its readiness comes first: it is no answer to the start.
    connect(&controller, &BackendController::readyChanged, this, &TerminalRun::beginTraining,
            Qt::QueuedConnection);
    connect(&controller, &BackendController::statusChanged, this, &TerminalRun::followStatus);
    connect(&controller, &BackendController::recentArchiveChanged, this, &TerminalRun::followArchive);
    connect(&controller, &BackendController::backendErrorReported, this, &TerminalRun::handleError);
    connect(&controller, &BackendController::backendDone, this, &TerminalRun::handleDone);
    connect(&controller, &BackendController::backendExited, this, &TerminalRun::handleExit);
}

void TerminalRun::start()
{
    setPhase(Phase::waitingForBackend);
    m_controller.launch();
    if (m_controller.fatalError()) {
        m_failure = *m_controller.fatalError();
        m_outcome = Outcome::notStartable;
        end();
    }
}

void TerminalRun::beginTraining()
{
    if (m_phase != Phase::waitingForBackend || !m_controller.ready()) {
        return;
    }
    setPhase(Phase::training);
    if (m_request.steps) {
        m_controller.setMaxSteps(*m_request.steps);
    }
    m_controller.startTraining(m_request.resume);
    if (m_errorReported) {
        m_refusalLimit.start(m_limits.refusal);
    }
}

bool TerminalRun::isUnderWay() const
{
    static const std::array states{QLatin1String("starting"), QLatin1String("preparing"),
                                   QLatin1String("running"), QLatin1String("paused"),
                                   QLatin1String("stopping")};
    return std::ranges::find(states, m_controller.status().state) != states.end();
}

void TerminalRun::followStatus()
{
    const backend::protocol::TrainStatusPayload &status = m_controller.status();
    if (status.step > 0) {
        m_lastTrained = status;
    }
    if (m_phase != Phase::training) {
        return;
    }
    if (isUnderWay()) {
        m_wasUnderWay = true;
        m_refusalLimit.stop();
    } else if (status.state == QLatin1String("error")) {
        fail(m_errorReported ? QString() : status.error.value_or(QStringLiteral("The training failed.")));
    } else if (status.state == QLatin1String("idle") && (m_wasUnderWay || m_errorReported)) {
        endWithoutArchive();
    }
}

void TerminalRun::followArchive()
{
    if (m_controller.recentArchive() && !m_archive && m_phase != Phase::ended) {
        m_archive = m_controller.recentArchive();
        if (m_phase == Phase::training) {
            quitBackend(Outcome::archived);
        } else {
            m_outcome = Outcome::archived;
        }
    }
}

void TerminalRun::handleError()
{
    m_errorReported = true;
    // An error does not end a run that is under way; its status does.
    if (m_phase == Phase::training && !isUnderWay()) {
        m_refusalLimit.start(m_limits.refusal);
    }
}

void TerminalRun::handleDone()
{
    if (m_phase == Phase::training) {
        endWithoutArchive();
    }
}

void TerminalRun::handleExit(int status)
{
    if (m_phase == Phase::waitingForBackend || m_phase == Phase::training) {
        m_outcome = Outcome::failed;
        m_failure = QStringLiteral("The Python backend ended unexpectedly (code %1).").arg(status);
    }
    end();
}

void TerminalRun::endWithoutArchive()
{
    if (m_phase == Phase::training) {
        fail(m_errorReported ? QString() : QStringLiteral("The run ended without an archived model."));
    }
}

void TerminalRun::fail(const QString &failure)
{
    m_failure = failure;
    quitBackend(Outcome::failed);
}

void TerminalRun::stop()
{
    if (m_stopRequested || m_phase == Phase::ending || m_phase == Phase::ended) {
        return;
    }
    m_stopRequested = true;
    quitBackend(Outcome::stopped);
}

void TerminalRun::stopAtOnce()
{
    if (m_phase == Phase::ended) {
        return;
    }
    if (m_phase != Phase::ending) {
        m_outcome = Outcome::stopped;
    }
    m_controller.killSidecar();
    end();
}

void TerminalRun::quitBackend(Outcome outcome)
{
    m_refusalLimit.stop();
    m_outcome = outcome;
    // A sidecar that is not ready trains nothing; it sees its input end.
    if (!m_controller.ready()) {
        end();
        return;
    }
    setPhase(Phase::ending);
    m_quitLimit.start(m_limits.quitting);
    if (m_controller.isRunning()) {
        m_controller.shutdown();
    }
}

void TerminalRun::end()
{
    if (m_phase == Phase::ended) {
        return;
    }
    m_quitLimit.stop();
    m_refusalLimit.stop();
    setPhase(Phase::ended);
    Q_EMIT ended();
}

void TerminalRun::setPhase(Phase phase)
{
    m_phase = phase;
    Q_EMIT phaseChanged();
}

} // namespace zorel::terminal
