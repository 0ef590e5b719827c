#pragma once

#include "updater/AvailableUpdate.h"
#include "updater/Cancellation.h"
#include "updater/InstallState.h"
#include "updater/InstallSurroundings.h"
#include "updater/RelaunchHandoff.h"
#include "updater/UpdateError.h"

#include <QObject>
#include <QThread>

#include <memory>

namespace zorel::updater {

/// One install task on a thread of its own, heard of on the thread that this object belongs to. Destroying it
/// cancels the task and waits for its end.
class RunningInstallation : public QObject
{
    Q_OBJECT

public:
    RunningInstallation(AvailableUpdate update, InstallSurroundings surroundings);
    ~RunningInstallation() override;

    /// The task fails with `cancelled`, unless it is done already.
    void cancel() { m_cancellation.cancel(); }

Q_SIGNALS:
    void stateEntered(const zorel::updater::InstallState &state);
    /// One of these two comes, once, last.
    void finished(const zorel::updater::RelaunchHandoff &handoff);
    void failed(const zorel::updater::UpdateError &error);

private:
    void work();
    template <class Notification>
    void post(Notification notification);

    const AvailableUpdate m_update;
    const InstallSurroundings m_surroundings;
    Cancellation m_cancellation;
    std::unique_ptr<QThread> m_thread;
};

} // namespace zorel::updater
