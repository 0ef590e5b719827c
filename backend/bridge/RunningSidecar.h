#pragma once

#include "backend/bridge/LineReader.h"
#include "platform/ChildProcess.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <memory>

namespace zorel::backend::bridge {

class CommandQueue;

/// One launched sidecar: the child, the queue to its input and the readers of its outputs. Belongs to the
/// main thread. Its outputs may still speak after its exit, through a grandchild that holds them.
class RunningSidecar : public QObject
{
    Q_OBJECT

public:
    /// What is done with a line, on the main thread.
    struct Handlers
    {
        LineReader::Handler outputLine;
        LineReader::Handler errorLine;
    };

    /// Starts the child. Throws LaunchError, or std::system_error when descriptors or threads have run out.
    RunningSidecar(const platform::ChildProgram &program, const Handlers &handlers);
    ~RunningSidecar() override;

    /// Whether the child has not ended yet; false some moments before `exited`.
    bool isRunning() const { return m_process.isRunning(); }
    /// As in `exited`; meaningless while the child runs.
    int exitStatus() const { return m_process.exitStatus(); }
    void kill();

    /// False after a failed write.
    bool takesInput() const { return m_input != nullptr; }
    /// Sends one command without waiting. Nothing on success, otherwise why it cannot be sent; the input is
    /// closed then.
    std::optional<QString> send(const QString &name, const QByteArray &line);
    /// Tells the child that nothing more will come.
    void closeInput();

    /// Makes room for a successor: no event of this sidecar is delivered any more, what is left of its
    /// standard error is, and then the object deletes itself.
    void retire();

Q_SIGNALS:
    /// A queued command could not be written; the input is closed.
    void sendFailed(const QString &reason);
    /// The child ended, and what it wrote until then has been handled. `status` as of ChildProcess::exited.
    void exited(int status);

private:
    void announceExitWhenDrained(int status);

    platform::ChildProcess m_process;
    std::unique_ptr<CommandQueue> m_input;
    std::unique_ptr<LineReader> m_outputReader;
    std::unique_ptr<LineReader> m_errorReader;
};

} // namespace zorel::backend::bridge
