#pragma once

#include "platform/Environment.h"

#include <QString>
#include <QStringList>

#include <chrono>
#include <functional>

namespace zorel::updater {

class Cancellation;

/// How a tool ended.
struct ToolResult
{
    int status = 0; ///< its exit code, or the number of the signal that killed it
    QString output; ///< what it wrote, trimmed; first the standard output; of much the ends
};

/// Runs command-line tools, one at a time, and waits for them. A tool that is still running when the
/// cancellation comes, when its time is over, or when the watch throws, is killed with all that it started.
class ToolRunner
{
public:
    /// The cancellation outlives the runner.
    ToolRunner(platform::Environment environment, std::chrono::milliseconds limit,
               const Cancellation &cancellation);

    /// Called several times a second while a tool runs, on the same thread.
    void setWatch(std::function<void()> watch);

    /// Throws LaunchError when the tool cannot be started, and UpdateError when it is cancelled
    /// (`cancelled`), when its time is over (`extractionFailed`), or whatever the watch throws.
    ToolResult run(const QString &executable, const QStringList &arguments) const;
    /// The same for a step of unpacking: a tool that cannot be started or fails is an UpdateError
    /// (`extractionFailed`) with its output.
    void unpackWith(const QString &executable, const QStringList &arguments) const;

private:
    platform::Environment m_environment;
    std::chrono::milliseconds m_limit;
    const Cancellation &m_cancellation;
    std::function<void()> m_watch;
};

} // namespace zorel::updater
