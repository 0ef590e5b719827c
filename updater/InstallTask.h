#pragma once

#include "updater/AvailableUpdate.h"
#include "updater/InstallState.h"
#include "updater/RelaunchHandoff.h"

#include <QString>

#include <functional>

namespace zorel::updater {

class Cancellation;
class WorkingFolder;
struct InstallSurroundings;

/// Downloads, verifies and unpacks one update and starts the script that installs it, in one blocking
/// sequence on the calling thread.
class InstallTask
{
public:
    /// Hears of every state that the task enters, on its thread; of the progress at most 30 times a second.
    using Publish = std::function<void(const InstallState &)>;

    /// Everything handed in outlives the task.
    InstallTask(const AvailableUpdate &update, const InstallSurroundings &surroundings,
                const Cancellation &cancellation, Publish publish);

    /// To be called once. When it returns, the script waits for the end of this process. Throws UpdateError;
    /// nothing is left behind and the installed bundle is untouched then.
    RelaunchHandoff run();

private:
    void download(const QString &archive) const;
    void verify(const QString &archive) const;
    QString unpack(const QString &archive, const WorkingFolder &folder) const;
    void requireReplaceableTarget() const;
    void requireRoomFor(qint64 bytes) const;
    RelaunchHandoff writeScript(const QString &newBundle, const WorkingFolder &folder) const;
    QString targetForScript(const WorkingFolder &folder) const;
    void launch(const RelaunchHandoff &handoff) const;

    const AvailableUpdate &m_update;
    const InstallSurroundings &m_surroundings;
    const Cancellation &m_cancellation;
    Publish m_publish;
};

} // namespace zorel::updater
