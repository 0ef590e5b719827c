#include "updater/ToolRunner.h"

#include "platform/ChildProcess.h"
#include "updater/Cancellation.h"
#include "updater/UpdateError.h"

#include <QDeadlineTimer>
#include <QFileInfo>

#include <array>
#include <csignal>
#include <system_error>
#include <utility>

#include <poll.h>
#include <unistd.h>

namespace zorel::updater {

namespace {

using namespace std::chrono_literals;

/// Of each output the last bytes are kept: that is where tools say why they gave up.
constexpr qsizetype keptOutput = 2048;
constexpr std::chrono::milliseconds betweenLooks = 50ms;
constexpr std::chrono::milliseconds betweenWatches = 250ms;

/// One end of a pipe that the tool writes to, and the end of what it wrote.
class OutputEnd
{
public:
    explicit OutputEnd(platform::Descriptor descriptor)
        : m_descriptor(std::move(descriptor))
    {
        m_descriptor.setNonBlocking();
    }

    /// -1, which poll ignores, when the tool has closed its end.
    int number() const { return m_descriptor.number(); }

    /// Takes what there is. A flood does not keep this busy for ever.
    void drain()
    {
        constexpr int mostReads = 64;
        std::array<char, 16'384> buffer;
        for (int reads = 0; m_descriptor.isOpen() && reads < mostReads; ++reads) {
            const ssize_t count = ::read(m_descriptor.number(), buffer.data(), buffer.size());
            if (count > 0) {
                m_tail.append(buffer.data(), count);
                m_isCut = m_isCut || m_tail.size() > keptOutput;
                m_tail = m_tail.right(keptOutput);
            } else if (count == 0 || (errno != EAGAIN && errno != EINTR)) {
                m_descriptor.close();
            } else {
                return;
            }
        }
    }

    QString text() const
    {
        const QString text = QString::fromUtf8(m_tail).trimmed();
        return m_isCut ? QStringLiteral("…") + text : text;
    }

private:
    platform::Descriptor m_descriptor;
    QByteArray m_tail;
    bool m_isCut = false;
};

/// Both outputs of a tool.
struct Outputs
{
    OutputEnd standard;
    OutputEnd error;

    void drain()
    {
        standard.drain();
        error.drain();
    }

    QString text() const { return (standard.text() + u'\n' + error.text()).trimmed(); }
};

/// Kills the tool, unless it has ended, and waits until it is gone: what it writes to is about to be removed.
class KilledOnFailure
{
public:
    explicit KilledOnFailure(platform::ChildProcess &child)
        : m_child(child)
    {}
    ~KilledOnFailure()
    {
        while (m_child.isRunning()) {
            m_child.sendSignal(SIGKILL);
            ::poll(nullptr, 0, 5);
        }
    }
    Q_DISABLE_COPY_MOVE(KilledOnFailure)

private:
    platform::ChildProcess &m_child;
};

QString inSeconds(std::chrono::milliseconds time)
{
    return QString::number(std::chrono::duration<double>(time).count());
}

} // namespace

ToolRunner::ToolRunner(platform::Environment environment, std::chrono::milliseconds limit,
                       const Cancellation &cancellation)
    : m_environment(std::move(environment))
    , m_limit(limit)
    , m_cancellation(cancellation)
{}

void ToolRunner::setWatch(std::function<void()> watch)
{
    m_watch = std::move(watch);
}

ToolResult ToolRunner::run(const QString &executable, const QStringList &arguments) const
{
    m_cancellation.throwIfCancelled();
    platform::ChildProcess child({executable, arguments, QStringLiteral("/"), m_environment});
    const KilledOnFailure guard(child);
    platform::ChildPipes pipes = child.takePipes();
    pipes.input.close();
    Outputs outputs{OutputEnd(std::move(pipes.output)), OutputEnd(std::move(pipes.error))};
    const QDeadlineTimer deadline(m_limit);
    QDeadlineTimer nextWatch(betweenWatches);
    // The end of the pipes is not waited for: what the tool has started may hold them for ever.
    while (child.isRunning()) {
        outputs.drain();
        m_cancellation.throwIfCancelled();
        if (deadline.hasExpired()) {
            throw UpdateError(UpdateError::ExtractionFailed{
                QStringLiteral("%1 did not finish within %2 seconds: %3")
                    .arg(QFileInfo(executable).fileName(), inSeconds(m_limit), outputs.text())});
        }
        if (m_watch && nextWatch.hasExpired()) {
            m_watch();
            nextWatch.setRemainingTime(betweenWatches);
        }
        std::array<pollfd, 3> ends{{{outputs.standard.number(), POLLIN, 0},
                                    {outputs.error.number(), POLLIN, 0},
                                    {m_cancellation.descriptor(), POLLIN, 0}}};
        ::poll(ends.data(), ends.size(), static_cast<int>(betweenLooks.count()));
    }
    outputs.drain();
    return {child.exitStatus(), outputs.text()};
}

void ToolRunner::unpackWith(const QString &executable, const QStringList &arguments) const
{
    const QString name = QFileInfo(executable).fileName();
    try {
        const ToolResult result = run(executable, arguments);
        if (result.status != 0) {
            throw UpdateError(
                UpdateError::ExtractionFailed{QStringLiteral("%1 exited with code %2: %3")
                                                  .arg(name, QString::number(result.status), result.output)});
        }
    } catch (const platform::LaunchError &error) {
        throw UpdateError(UpdateError::ExtractionFailed{QString::fromUtf8(error.what())});
    }
}

} // namespace zorel::updater
