#pragma once

#include "platform/Descriptor.h"
#include "platform/Environment.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <stdexcept>
#include <utility>

#include <sys/types.h>

namespace zorel::platform {

/// What to run, and how.
struct ChildProgram
{
    QString executable;
    QStringList arguments;
    QString workingDirectory;
    Environment environment; ///< the whole environment of the child
};

/// A child could not be started; `what()` is UTF-8 and names the cause.
class LaunchError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The parent's ends of a child's standard channels.
struct ChildPipes
{
    Descriptor input;
    Descriptor output;
    Descriptor error;
};

/// A running child with pipes for its standard channels, in a process group of its own (a terminal's Ctrl-C
/// does not reach it) and with no other descriptor of ours. Its exit is noticed by a thread of its own, also
/// while a grandchild holds the pipes. Destroying the object leaves a running child alone and reaps it when
/// it ends.
class ChildProcess : public QObject
{
    Q_OBJECT

public:
    /// Starts the child. Throws LaunchError.
    explicit ChildProcess(const ChildProgram &program);
    ~ChildProcess() override;

    /// Hands the pipes over; to be called once.
    ChildPipes takePipes() { return std::move(m_pipes); }
    pid_t processId() const { return m_processId; }
    /// Whether the child has not ended yet. May be called from any thread.
    bool isRunning() const;
    /// As in `exited`; meaningless while the child runs.
    int exitStatus() const;
    /// Sends `signal` to the child and the processes of its group, unless the child has ended.
    void sendSignal(int signal) const;

Q_SIGNALS:
    /// The child ended; emitted once, on the owner's thread. `status` is its exit code, or the number of the
    /// signal that killed it.
    void exited(int status);

private:
    struct Shared;

    ChildPipes m_pipes;
    pid_t m_processId = -1;
    std::shared_ptr<Shared> m_shared;
};

} // namespace zorel::platform
