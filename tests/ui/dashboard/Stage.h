#pragma once

#include "app/folders/FolderAccessChecker.h"
#include "app/settings/ZorelSettings.h"
#include "backend/bridge/BackendController.h"
#include "tests/support/FakeSidecar.h"
#include "tests/support/InMemoryUserDefaults.h"
#include "ui/dashboard/Actions.h"

#include <QAbstractButton>
#include <QLabel>
#include <QSet>
#include <QStringList>
#include <QTest>
#include <QWidget>

namespace zorel::tests {

/// What the dashboard needs around it: a controller over a scripted sidecar that is launched only when a test
/// wants to see commands, settings in memory, folders that are blocked by name, and actions that are
/// recorded.
class Stage
{
public:
    Stage();

    /// Launches a sidecar that says it is ready and then only records what it is sent.
    void launchRecorder();
    /// The commands recorded so far that are named `name`, oldest first, or all.
    std::vector<QJsonObject> commands(const QString &name = {}) const;

    void applyStatus(const QString &state, std::int64_t step = 0, std::int64_t maxSteps = 1000,
                     double loss = 0);
    /// A status as a run in full swing sends it, ready to be altered.
    static backend::protocol::TrainStatusPayload runningStatus();
    void becomeReady(std::int64_t defaultMaxSteps = 1000);
    void setBlocked(const QSet<app::folders::ConfiguredFolder> &folders);
    QStringList log() const { return {backend.logLines().begin(), backend.logLines().end()}; }

    FakeSidecar sidecar;
    InMemoryUserDefaults store;
    app::settings::ZorelSettings settings;
    backend::bridge::BackendController backend;
    QSet<QString> blockedPaths;
    std::vector<QUrl> openedUrls;
    app::folders::FolderAccessChecker access;
    QStringList revealed;
    int settingsOpenings = 0;
    ui::dashboard::Actions actions;

private:
    QString recordPath() const { return sidecar.pathOf(QStringLiteral("commands")); }
};

/// Every text that a sighted user finds in `root`: of labels, buttons and fields that are not hidden in it.
QStringList visibleTexts(const QWidget *root);
/// Whether a visible text is `text`.
bool shows(const QWidget *root, const QString &text);
/// The names of the symbols in `root` that are not hidden in it, in the order in which they were put there.
QStringList symbols(const QWidget *root);
/// The button named `name` that is not hidden in `root`; null when there is none.
QAbstractButton *button(const QWidget *root, const QString &name);

} // namespace zorel::tests
