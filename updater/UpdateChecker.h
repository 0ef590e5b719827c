#pragma once

#include "updater/AvailableUpdate.h"
#include "updater/InstallState.h"
#include "updater/InstallSurroundings.h"
#include "updater/RelaunchHandoff.h"
#include "updater/UpdateAlert.h"
#include "updater/UpdateError.h"

#include <QDateTime>
#include <QFuture>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace caldra {
class CaldraClient;
struct DistributionLatestResponse;
} // namespace caldra
namespace zorel::platform {
class UserDefaults;
}

namespace zorel::updater {

class RunningInstallation;

/// Asks the distribution service for newer releases of this application, offers them, and installs what the
/// user accepts. Main thread only; all work is done elsewhere and its results appear here.
///
/// A screen shows the update sheet while `presentedUpdate` holds one: the offer while `install` is idle, the
/// progress while it is under way, the error with "Try Again" when it has failed. The shell calls
/// `startSchedule` at start, answers `quitRequested` by terminating, and calls `finishTermination` last of
/// all.
class UpdateChecker : public QObject
{
    Q_OBJECT

public:
    static constexpr double dailyInterval = 86'400; ///< seconds between automatic checks
    static constexpr double launchDelay = 2;        ///< seconds from start to the first one

    static QString lastCheckKey() { return QStringLiteral("talvex.updater.lastCheckAt"); }
    static QString skippedVersionKey() { return QStringLiteral("talvex.updater.skippedVersion"); }

    /// Key of Info.plist: a folder with programs that stand in for the system's tools. Has an effect only
    /// where the services are on a loopback address, which is never so in a bundle that is shipped.
    static QString trialToolsKey() { return QStringLiteral("ZorelTrialTools"); }

    /// What the checker needs from outside.
    struct Surroundings
    {
        using Action = std::function<void()>;

        std::shared_ptr<const caldra::CaldraClient> caldra; ///< null when the services are not configured
        platform::UserDefaults *defaults = nullptr;         ///< outlives the checker
        QString currentVersion;
        std::function<QDateTime()> now;
        /// Calls the action on the main thread once the time has passed, unless the context is gone.
        std::function<void(std::chrono::milliseconds, QObject *context, Action)> runAfter;
        /// The same again and again, for as long as the timer that is returned exists.
        std::function<std::unique_ptr<QObject>(std::chrono::milliseconds, Action)> runEvery;
        /// Ends the process at once with this status.
        std::function<void(int)> exitProcess;
        InstallSurroundings install;

        /// The real ones, for the bundle whose information dictionary is `information`.
        static Surroundings system(const QVariantMap &information);
    };

    explicit UpdateChecker(Surroundings surroundings);
    /// Cancels what is under way and waits for its end.
    ~UpdateChecker() override;

    const std::optional<AvailableUpdate> &available() const { return m_available; }
    bool isChecking() const { return m_isChecking; }
    /// Why the last check failed; nothing after a successful one.
    const std::optional<QString> &lastError() const { return m_lastError; }
    /// When the last successful check ended.
    const std::optional<QDateTime> &lastCheckedAt() const { return m_lastCheckedAt; }
    const InstallState &install() const { return m_install; }
    /// What the update sheet is about: the offer, or the update that is being installed or failed to be;
    /// nothing while there is to be no sheet.
    const std::optional<AvailableUpdate> &presentedUpdate() const;
    const QString &currentVersion() const { return m_surroundings.currentVersion; }

    /// Checks after `launchDelay` and then every `dailyInterval`. Without effect from the second call on.
    void startSchedule();
    /// The user's own check: tells its result in an alert, and offers a skipped version as well. While
    /// another check runs, it takes over that one; while an installation runs, it does nothing.
    void checkForUpdates();

    /// "Skip This Version": automatic checks never offer it again.
    void skipThisVersion();
    /// "Remind Me Later", and closing the sheet after a failure: the next check offers it again.
    void remindLater();
    /// The sheet's install button; without effect while an installation runs, or with nothing to install.
    void startInstall();
    /// "Try Again", after a failure.
    void retryInstall();
    /// Ends a running installation with "Update cancelled."; too late once the new version is being started.
    void cancelInstall();

    /// The last step of the application's termination: when an update waits for this process to end, tells it
    /// and ends the process with status 0; returns otherwise.
    void finishTermination();

Q_SIGNALS:
    void availableChanged();
    void isCheckingChanged();
    void lastErrorChanged();
    void lastCheckedAtChanged();
    void installChanged();
    void presentedUpdateChanged();
    void alertRequested(const zorel::updater::UpdateAlert &alert);
    /// The update is ready and waits for this process to end: the application is to terminate.
    void quitRequested();

private:
    enum class Trigger : std::uint8_t { automatic, manual };

    void check(Trigger trigger);
    void askService();
    void takeAnswer(QFuture<caldra::DistributionLatestResponse> answer);
    void concludeCheck(const AvailableUpdate &update);
    void failCheck(const UpdateError &error);
    void endCheck();
    void offerIfNewer(const AvailableUpdate &update);

    void beginInstall(const AvailableUpdate &update);
    void finishInstall(const RelaunchHandoff &handoff);
    void failInstall(const UpdateError &error);

    void setAvailable(const std::optional<AvailableUpdate> &update);
    void setLastError(const std::optional<QString> &error);
    void setInstall(const InstallState &state, const std::optional<AvailableUpdate> &subject);

    Surroundings m_surroundings;
    std::optional<AvailableUpdate> m_available;
    bool m_isChecking = false;
    std::optional<QString> m_lastError;
    std::optional<QDateTime> m_lastCheckedAt;
    InstallState m_install;
    std::unique_ptr<QObject> m_timer; ///< of the daily checks
    /// What `m_install` is about, unless that is idle.
    std::optional<AvailableUpdate> m_installSubject;
    std::unique_ptr<RunningInstallation> m_installTask;
    std::optional<RelaunchHandoff> m_handoff;
    bool m_didLaunchCheck = false;
    Trigger m_trigger = Trigger::automatic;
    QFuture<void> m_checking;
};

} // namespace zorel::updater
