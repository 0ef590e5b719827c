#pragma once

#include <QString>

namespace zorel::updater {

/// The files that the installer script and the ending application share, all inside the working folder.
struct RelaunchHandoff
{
    QString scriptPath;
    QString logPath;
    QString exitedSentinelPath;

    bool operator==(const RelaunchHandoff &) const = default;

    static RelaunchHandoff in(const QString &workingFolder);

    /// Tells the script not to wait for this process any longer. Returns false when that cannot be written;
    /// the script then sees the process end by itself.
    bool writeExitedSentinel() const;
};

} // namespace zorel::updater
