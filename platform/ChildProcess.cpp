#include "platform/ChildProcess.h"

#include "platform/SpawnIsolation.h"

#include <QByteArrayList>
#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include <spawn.h>
#include <sys/wait.h>

namespace zorel::platform {

namespace {

/// The null-terminated array of C strings that exec wants.
class ArgumentVector
{
public:
    explicit ArgumentVector(const QByteArrayList &texts)
        : m_bytes(texts.begin(), texts.end())
    {
        for (QByteArray &bytes : m_bytes) {
            m_pointers.push_back(bytes.data());
        }
        m_pointers.push_back(nullptr);
    }

    char **data() { return m_pointers.data(); }

private:
    std::vector<QByteArray> m_bytes;
    std::vector<char *> m_pointers;
};

QByteArrayList commandLine(const ChildProgram &program)
{
    QByteArrayList words{QFile::encodeName(program.executable)};
    for (const QString &argument : program.arguments) {
        words.append(QFile::encodeName(argument));
    }
    return words;
}

QByteArrayList assignments(const Environment &environment)
{
    QByteArrayList lines;
    for (const auto &[name, value] : environment.asKeyValueRange()) {
        lines.append(name + '=' + value);
    }
    return lines;
}

class SpawnActions
{
public:
    SpawnActions() { ::posix_spawn_file_actions_init(&m_actions); }
    ~SpawnActions() { ::posix_spawn_file_actions_destroy(&m_actions); }
    Q_DISABLE_COPY_MOVE(SpawnActions)

    posix_spawn_file_actions_t *get() { return &m_actions; }

private:
    posix_spawn_file_actions_t m_actions;
};

class SpawnAttributes
{
public:
    SpawnAttributes() { ::posix_spawnattr_init(&m_attributes); }
    ~SpawnAttributes() { ::posix_spawnattr_destroy(&m_attributes); }
    Q_DISABLE_COPY_MOVE(SpawnAttributes)

    /// A process group of its own, no blocked signals, and the signals that we ignore back at their defaults.
    void isolate(short flags)
    {
        sigset_t none;
        ::sigemptyset(&none);
        ::posix_spawnattr_setsigmask(&m_attributes, &none);
        sigset_t defaults;
        ::sigemptyset(&defaults);
        for (const int signal : {SIGPIPE, SIGINT, SIGTERM, SIGHUP, SIGXFSZ}) {
            ::sigaddset(&defaults, signal);
        }
        ::posix_spawnattr_setsigdefault(&m_attributes, &defaults);
        ::posix_spawnattr_setpgroup(&m_attributes, 0);
        ::posix_spawnattr_setflags(&m_attributes,
                                   static_cast<short>(flags | POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK |
                                                      POSIX_SPAWN_SETSIGDEF));
    }

    const posix_spawnattr_t *get() const { return &m_attributes; }

private:
    posix_spawnattr_t m_attributes;
};

std::string describe(const ChildProgram &program, int error)
{
    if (!QFileInfo(program.workingDirectory).isDir()) {
        return "the folder " + program.workingDirectory.toStdString() + " does not exist";
    }
    return program.executable.toStdString() + ": " + std::strerror(error);
}

pid_t spawn(const ChildProgram &program, const Pipe &input, const Pipe &output, const Pipe &error)
{
    SpawnActions actions;
    short flags = 0;
    const QByteArray folder = QFile::encodeName(program.workingDirectory);
    int result = ::posix_spawn_file_actions_addchdir_np(actions.get(), folder.constData());
    const auto connect = [&actions, &result](const Descriptor &end, int channel) {
        if (result == 0) {
            result = ::posix_spawn_file_actions_adddup2(actions.get(), end.number(), channel);
        }
    };
    connect(input.readEnd, 0);
    connect(output.writeEnd, 1);
    connect(error.writeEnd, 2);
    if (result == 0) {
        result = closeAllButStandardChannels(actions.get(), &flags);
    }

    pid_t processId = -1;
    if (result == 0) {
        SpawnAttributes attributes;
        attributes.isolate(flags);
        ArgumentVector arguments(commandLine(program));
        ArgumentVector environment(assignments(program.environment));
        const QByteArray executable = QFile::encodeName(program.executable);
        result = ::posix_spawn(&processId, executable.constData(), actions.get(), attributes.get(),
                               arguments.data(), environment.data());
    }
    if (result != 0) {
        throw LaunchError(describe(program, result));
    }
    return processId;
}

int statusOf(int waitStatus)
{
    return WIFSIGNALED(waitStatus) ? WTERMSIG(waitStatus) : WEXITSTATUS(waitStatus);
}

} // namespace

/// What the object and the waiting thread share; outlives both.
struct ChildProcess::Shared
{
    std::mutex mutex;
    pid_t processId = -1;
    bool running = true;
    int exitStatus = 0;
    ChildProcess *owner = nullptr;

    void waitForExit()
    {
        // Noticing and reaping are two steps, so that no signal is ever sent to a number that is no longer
        // the child's.
        siginfo_t ignored{};
        while (::waitid(P_PID, static_cast<id_t>(processId), &ignored, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {
        }
        const std::lock_guard lock(mutex);
        int waitStatus = 0;
        ::waitpid(processId, &waitStatus, 0);
        exitStatus = statusOf(waitStatus);
        running = false;
        if (owner != nullptr) {
            ChildProcess *child = owner;
            QMetaObject::invokeMethod(
                child, [child, status = exitStatus] { Q_EMIT child->exited(status); }, Qt::QueuedConnection);
        }
    }
};

ChildProcess::ChildProcess(const ChildProgram &program)
    : m_shared(std::make_shared<Shared>())
{
    try {
        Pipe input = Pipe::open();
        Pipe output = Pipe::open();
        Pipe error = Pipe::open();
        m_processId = spawn(program, input, output, error);
        m_pipes = {std::move(input.writeEnd), std::move(output.readEnd), std::move(error.readEnd)};
    } catch (const std::system_error &exhausted) {
        throw LaunchError(exhausted.code().message());
    }
    m_shared->processId = m_processId;
    m_shared->owner = this;
    std::thread([shared = m_shared] { shared->waitForExit(); }).detach();
}

ChildProcess::~ChildProcess()
{
    const std::lock_guard lock(m_shared->mutex);
    m_shared->owner = nullptr;
}

bool ChildProcess::isRunning() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->running;
}

int ChildProcess::exitStatus() const
{
    const std::lock_guard lock(m_shared->mutex);
    return m_shared->exitStatus;
}

void ChildProcess::sendSignal(int signal) const
{
    const std::lock_guard lock(m_shared->mutex);
    if (m_shared->running) {
        ::kill(-m_shared->processId, signal);
    }
}

} // namespace zorel::platform
