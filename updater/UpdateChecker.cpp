#include "updater/UpdateChecker.h"

#include "platform/UserDefaults.h"
#include "service/CaldraClient.h"
#include "service/core/CaldraError.h"
#include "service/core/InfoPlistError.h"
#include "updater/DownloadsPage.h"
#include "updater/RunningInstallation.h"
#include "updater/ServiceFailure.h"
#include "updater/VersionComparison.h"

#include <QFutureWatcher>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace zorel::updater {

namespace {

constexpr double serviceTimeout = 30; // seconds

std::shared_ptr<const caldra::CaldraClient> clientFor(const QVariantMap &information)
{
    const QVariant identifier = information.value(QStringLiteral("CFBundleIdentifier"));
    try {
        return std::make_shared<const caldra::CaldraClient>(caldra::CaldraClient::fromInfoDictionary(
            information, {}, identifier.isValid() ? std::optional(identifier.toString()) : std::nullopt,
            caldra::ServiceEndpoints::production(), {}, serviceTimeout));
    } catch (const caldra::InfoPlistError &) {
        return nullptr;
    }
}

/// The system's, except in a bundle made for trying out updates against a service on its own machine: that
/// one names a folder with stand-ins. Nobody but who can write the bundle has a say in it.
ToolPaths toolsFor(const QVariantMap &information, const caldra::CaldraClient *client)
{
    const QString folder = information.value(UpdateChecker::trialToolsKey()).toString();
    const bool isTrial = client && caldra::isLoopback(client->configuration.endpoints.distribution);
    return isTrial && !folder.isEmpty() ? ToolPaths::preferring(folder) : ToolPaths();
}

std::chrono::milliseconds milliseconds(double seconds)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::duration<double>(seconds));
}

UpdateAlert upToDateAlert(const QString &currentVersion)
{
    return {UpdateAlert::Kind::UpToDate, QStringLiteral("You're up to date"),
            QStringLiteral("Talvex LLM Trainer ") + currentVersion +
                QStringLiteral(" is the latest version available."),
            std::nullopt};
}

UpdateAlert checkFailedAlert(const UpdateError &error)
{
    return {UpdateAlert::Kind::CheckFailed, QStringLiteral("Couldn't check for updates"), error.message(),
            UpdateAlert::Link{QStringLiteral("Open Downloads Page"), downloadsPage()}};
}

} // namespace

UpdateChecker::Surroundings UpdateChecker::Surroundings::system(const QVariantMap &information)
{
    Surroundings surroundings;
    surroundings.caldra = clientFor(information);
    surroundings.defaults = &platform::standardUserDefaults();
    surroundings.currentVersion =
        information.value(QStringLiteral("CFBundleShortVersionString"), QStringLiteral("unknown")).toString();
    surroundings.now = &QDateTime::currentDateTimeUtc;
    surroundings.runAfter = [](std::chrono::milliseconds delay, QObject *context, Action action) {
        QTimer::singleShot(delay, context, std::move(action));
    };
    surroundings.runEvery = [](std::chrono::milliseconds interval, const Action &action) {
        auto timer = std::make_unique<QTimer>();
        timer->setTimerType(Qt::VeryCoarseTimer);
        QObject::connect(timer.get(), &QTimer::timeout, timer.get(), action);
        timer->start(interval);
        return timer;
    };
    surroundings.exitProcess = [](int status) {
        std::fflush(nullptr);
        std::_Exit(status);
    };
    surroundings.install = InstallSurroundings::system();
    surroundings.install.tools = toolsFor(information, surroundings.caldra.get());
    surroundings.install.userAgent += '/' + surroundings.currentVersion.toUtf8().toPercentEncoding();
    return surroundings;
}

UpdateChecker::UpdateChecker(Surroundings surroundings)
    : m_surroundings(std::move(surroundings))
    , m_lastCheckedAt(m_surroundings.defaults->date(lastCheckKey()))
{}

UpdateChecker::~UpdateChecker()
{
    m_checking.cancel();
}

void UpdateChecker::startSchedule()
{
    if (std::exchange(m_didLaunchCheck, true)) {
        return;
    }
    m_surroundings.runAfter(milliseconds(launchDelay), this, [this] {
        check(Trigger::automatic);
        m_timer = m_surroundings.runEvery(milliseconds(dailyInterval), [this] { check(Trigger::automatic); });
    });
}

void UpdateChecker::checkForUpdates()
{
    check(Trigger::manual);
}

void UpdateChecker::check(Trigger trigger)
{
    // The sheet is taken while an installation runs, and the offer it is about must not change.
    if (m_install.isUnderWay()) {
        return;
    }
    if (m_isChecking) {
        m_trigger = trigger == Trigger::manual ? trigger : m_trigger;
        return;
    }
    m_trigger = trigger;
    m_isChecking = true;
    Q_EMIT isCheckingChanged();
    setLastError(std::nullopt);
    if (m_surroundings.caldra) {
        askService();
    } else {
        failCheck(UpdateError(UpdateError::ClientUnavailable{}));
    }
}

void UpdateChecker::askService()
{
    const QFuture<caldra::DistributionLatestResponse> answer = m_surroundings.caldra->distribution.latest(
        QStringLiteral("talvex-llm-trainer"),
        {caldra::DistributionPlatform::macos, caldra::DistributionChannel::stable,
         caldra::DistributionArtifactPurpose::update});
    m_checking = QFuture<void>(answer);
    // A continuation of the future would need this object to outlive the answer.
    auto *watcher = new QFutureWatcher<caldra::DistributionLatestResponse>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher] {
        watcher->deleteLater();
        takeAnswer(watcher->future());
    });
    watcher->setFuture(answer);
}

void UpdateChecker::takeAnswer(QFuture<caldra::DistributionLatestResponse> answer)
{
    try {
        answer.waitForFinished(); // throws what the call failed with
        if (answer.resultCount() == 0) {
            throw UpdateError(UpdateError::Cancelled{});
        }
        concludeCheck(AvailableUpdate::from(answer.result()));
    } catch (const caldra::CaldraError &error) {
        failCheck(updateErrorFrom(error));
    } catch (const UpdateError &error) {
        failCheck(error);
    }
}

void UpdateChecker::concludeCheck(const AvailableUpdate &update)
{
    m_lastCheckedAt = m_surroundings.now();
    m_surroundings.defaults->setDate(lastCheckKey(), *m_lastCheckedAt);
    Q_EMIT lastCheckedAtChanged();
    offerIfNewer(update);
}

void UpdateChecker::offerIfNewer(const AvailableUpdate &update)
{
    const Trigger trigger = m_trigger;
    const bool isNewer = compareVersions(update.version, m_surroundings.currentVersion) > 0;
    const bool isSkipped = trigger == Trigger::automatic &&
                           m_surroundings.defaults->string(skippedVersionKey()) == update.version;
    // An installation that began during the check goes on undisturbed.
    if (!m_install.isUnderWay()) {
        if (!isNewer) {
            setAvailable(std::nullopt);
        } else if (!isSkipped) {
            setInstall(InstallState(), std::nullopt);
            setAvailable(update);
        }
    }
    endCheck();
    if (!isNewer && trigger == Trigger::manual) {
        Q_EMIT alertRequested(upToDateAlert(m_surroundings.currentVersion));
    }
}

void UpdateChecker::failCheck(const UpdateError &error)
{
    const Trigger trigger = m_trigger;
    setLastError(error.message());
    endCheck();
    if (trigger == Trigger::manual) {
        Q_EMIT alertRequested(checkFailedAlert(error));
    }
}

void UpdateChecker::endCheck()
{
    m_isChecking = false;
    Q_EMIT isCheckingChanged();
}

const std::optional<AvailableUpdate> &UpdateChecker::presentedUpdate() const
{
    return m_installSubject ? m_installSubject : m_available;
}

void UpdateChecker::skipThisVersion()
{
    if (m_install.isUnderWay() || !m_available) {
        return;
    }
    m_surroundings.defaults->setString(skippedVersionKey(), m_available->version);
    setAvailable(std::nullopt);
}

void UpdateChecker::remindLater()
{
    if (m_install.isUnderWay()) {
        return;
    }
    setAvailable(std::nullopt);
    setInstall(InstallState(), std::nullopt);
}

void UpdateChecker::startInstall()
{
    if (!m_install.isUnderWay() && m_available) {
        beginInstall(AvailableUpdate(*m_available));
    }
}

void UpdateChecker::retryInstall()
{
    if (!m_install.isUnderWay() && m_installSubject) {
        beginInstall(AvailableUpdate(*m_installSubject));
    }
}

void UpdateChecker::beginInstall(const AvailableUpdate &update)
{
    setInstall(InstallState::Value(InstallState::Downloading{}), update);
    try {
        m_installTask = std::make_unique<RunningInstallation>(update, m_surroundings.install);
    } catch (const std::system_error &exhausted) {
        failInstall(UpdateError(UpdateError::ExtractionFailed{QString::fromUtf8(exhausted.what())}));
        return;
    }
    connect(m_installTask.get(), &RunningInstallation::stateEntered, this,
            [this, update](const InstallState &state) { setInstall(state, update); });
    connect(m_installTask.get(), &RunningInstallation::finished, this, &UpdateChecker::finishInstall);
    connect(m_installTask.get(), &RunningInstallation::failed, this, &UpdateChecker::failInstall);
}

void UpdateChecker::cancelInstall()
{
    if (m_installTask) {
        m_installTask->cancel();
    }
}

void UpdateChecker::finishInstall(const RelaunchHandoff &handoff)
{
    m_handoff = handoff;
    setAvailable(std::nullopt);
    Q_EMIT quitRequested();
}

void UpdateChecker::failInstall(const UpdateError &error)
{
    // The offer ends with the failure; what the sheet goes on about is kept for another try.
    setInstall(InstallState::Value(InstallState::Failed{error.message()}), m_installSubject);
    setAvailable(std::nullopt);
}

void UpdateChecker::finishTermination()
{
    if (!m_handoff) {
        // An installation under way needs the application object, which goes next.
        m_installTask.reset();
        return;
    }
    m_surroundings.defaults->synchronize();
    m_handoff->writeExitedSentinel();
    m_surroundings.exitProcess(EXIT_SUCCESS);
}

void UpdateChecker::setAvailable(const std::optional<AvailableUpdate> &update)
{
    if (m_available == update) {
        return;
    }
    const auto presented = presentedUpdate();
    m_available = update;
    Q_EMIT availableChanged();
    if (presentedUpdate() != presented) {
        Q_EMIT presentedUpdateChanged();
    }
}

void UpdateChecker::setLastError(const std::optional<QString> &error)
{
    if (m_lastError != error) {
        m_lastError = error;
        Q_EMIT lastErrorChanged();
    }
}

void UpdateChecker::setInstall(const InstallState &state, const std::optional<AvailableUpdate> &subject)
{
    const auto presented = presentedUpdate();
    const bool isOther = m_install != state;
    m_install = state;
    m_installSubject = subject;
    if (isOther) {
        Q_EMIT installChanged();
    }
    if (presentedUpdate() != presented) {
        Q_EMIT presentedUpdateChanged();
    }
}

} // namespace zorel::updater
