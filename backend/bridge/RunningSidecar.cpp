#include "backend/bridge/RunningSidecar.h"

#include "backend/bridge/CommandQueue.h"

#include <csignal>
#include <utility>

namespace zorel::backend::bridge {

RunningSidecar::RunningSidecar(const platform::ChildProgram &program, const Handlers &handlers)
    : m_process(program)
{
    platform::ChildPipes pipes = m_process.takePipes();
    m_input = std::make_unique<CommandQueue>(std::move(pipes.input));
    m_outputReader = std::make_unique<LineReader>(std::move(pipes.output), handlers.outputLine);
    m_errorReader = std::make_unique<LineReader>(std::move(pipes.error), handlers.errorLine);
    connect(m_input.get(), &CommandQueue::failed, this, [this](const QString &reason) {
        closeInput();
        Q_EMIT sendFailed(reason);
    });
    connect(&m_process, &platform::ChildProcess::exited, this, &RunningSidecar::announceExitWhenDrained);
}

RunningSidecar::~RunningSidecar() = default;

void RunningSidecar::announceExitWhenDrained(int status)
{
    m_outputReader->whenDrained(
        [this, status] { m_errorReader->whenDrained([this, status] { Q_EMIT exited(status); }); });
}

void RunningSidecar::kill()
{
    m_process.sendSignal(SIGKILL);
}

std::optional<QString> RunningSidecar::send(const QString &name, const QByteArray &line)
{
    std::optional<QString> failure = m_input->send(name, line);
    if (failure) {
        closeInput();
    }
    return failure;
}

void RunningSidecar::closeInput()
{
    if (m_input) {
        m_input->disconnect(this);
        // It may be the sender of the signal that led here.
        m_input.release()->deleteLater();
    }
}

void RunningSidecar::retire()
{
    disconnect(&m_process, nullptr, this, nullptr);
    closeInput();
    m_outputReader->stop();
    m_errorReader->whenDrained([this] { deleteLater(); });
}

} // namespace zorel::backend::bridge
