#include "updater/RunningInstallation.h"

#include "platform/ThreadQuality.h"
#include "updater/InstallTask.h"

#include <utility>

namespace zorel::updater {

RunningInstallation::RunningInstallation(AvailableUpdate update, InstallSurroundings surroundings)
    : m_update(std::move(update))
    , m_surroundings(std::move(surroundings))
    , m_thread(QThread::create([this] { work(); }))
{
    m_thread->setObjectName(QStringLiteral("updater"));
    m_thread->start();
}

RunningInstallation::~RunningInstallation()
{
    m_cancellation.cancel();
    m_thread->wait();
}

void RunningInstallation::work()
{
    platform::markThreadUserInitiated();
    InstallTask task(m_update, m_surroundings, m_cancellation, [this](const InstallState &state) {
        post([this, state] { Q_EMIT stateEntered(state); });
    });
    try {
        post([this, handoff = task.run()] { Q_EMIT finished(handoff); });
    } catch (const UpdateError &error) {
        post([this, error] { Q_EMIT failed(error); });
    } catch (const std::exception &error) {
        // Memory, threads or descriptors have run out.
        const UpdateError::ExtractionFailed failure{QString::fromUtf8(error.what())};
        post([this, failure] { Q_EMIT failed(UpdateError(failure)); });
    }
}

template <class Notification>
void RunningInstallation::post(Notification notification)
{
    QMetaObject::invokeMethod(this, std::move(notification), Qt::QueuedConnection);
}

} // namespace zorel::updater
