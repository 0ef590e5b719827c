#pragma once

#include "app/shell/ZorelApp.h"
#include "tests/app/shell/SimulatedTime.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"

#include <QStringList>
#include <QUrl>

#include <memory>

namespace zorel::tests {

/// An application in a temporary home with the scripted sidecar. What it would do to the desktop is written
/// down instead, and time passes only when the test says so.
class AppStage
{
public:
    AppStage();
    ~AppStage();

    app::shell::ZorelApp &app();
    QString home() const { return sidecar.root(); }

    /// Plays the start-up sequence with a sidecar that becomes ready, tells this state and stays until
    /// "quit".
    void startWithState(const QString &state);
    /// Names of the commands that the sidecar has read, without those that follow "ready".
    QString commands() const;
    /// The sidecar of startWithState() ends after "quit" when this was called.
    void letSidecarExit();
    /// Does what is due after this time.
    void pass(std::chrono::milliseconds time) { m_time.pass(time); }

    FakeSidecar sidecar;
    InMemoryUserDefaults store;
    platform::InformationDictionary information;
    QStringList revealed;
    QList<QUrl> opened;
    QStringList probed;
    bool isAccessAllowed = true;
    std::optional<QString> awakeReason;
    int quits = 0;
    /// What the update checker has planned.
    std::vector<std::pair<std::chrono::milliseconds, std::function<void()>>> checks;
    int settingsMade = 0;
    /// Called before each probe with the number of those before it.
    std::function<void(qsizetype)> beforeProbe;
    /// Called before the sidecar is located.
    std::function<void()> beforeLaunch;

private:
    app::shell::ZorelApp::Surroundings surroundings();
    updater::UpdateChecker::Surroundings updaterSurroundings();

    SimulatedTime m_time;
    std::unique_ptr<app::settings::ZorelSettings> m_settings;
    std::unique_ptr<app::shell::ZorelApp> m_app;
};

} // namespace zorel::tests
