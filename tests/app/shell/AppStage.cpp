#include "tests/app/shell/AppStage.h"

#include "app/settings/ZorelSettings.h"

#include <QFile>
#include <QTest>

#include <algorithm>

namespace zorel::tests {

using app::settings::ZorelSettings;
using app::shell::ZorelApp;

namespace {

QJsonObject status(const QString &state)
{
    QJsonObject event{{QStringLiteral("event"), QStringLiteral("status")}, {QStringLiteral("state"), state}};
    for (const char *key :
         {"step", "max_steps", "loss", "lr", "grad_norm", "tokens_per_sec", "elapsed_s", "prep_progress"}) {
        event.insert(QLatin1String(key), 1);
    }
    return event;
}

} // namespace

AppStage::AppStage() = default;

AppStage::~AppStage()
{
    if (m_app) {
        m_app->backend().killSidecar();
    }
}

ZorelApp::Surroundings AppStage::surroundings()
{
    ZorelApp::Surroundings all;
    all.information = information;
    all.settings = [this]() -> ZorelSettings & {
        ++settingsMade;
        m_settings = std::make_unique<ZorelSettings>(store, platform::StandardFolders::below(home()));
        return *m_settings;
    };
    all.defaults = [this]() -> platform::UserDefaults & {
        return store;
    };
    all.backend = sidecar.surroundings();
    all.backend.host = [this, locate = all.backend.host] {
        if (beforeLaunch) {
            beforeLaunch();
        }
        return locate();
    };
    all.delegate = {[this] { return m_time.now(); },
                    [this](std::chrono::milliseconds delay, QObject *, std::function<void()> action) {
                        m_time.after(delay, std::move(action));
                    }};
    all.probeAccess = [this](const QString &folder) {
        if (beforeProbe) {
            beforeProbe(probed.size());
        }
        probed.append(folder);
        return isAccessAllowed;
    };
    all.workspace = {[this](const QUrl &url) {
                         opened.append(url);
                         return true;
                     },
                     [this](const QString &path) {
                         revealed.append(path);
                     }};
    all.keepAwake = [this](const std::optional<QString> &reason) {
        awakeReason = reason;
    };
    all.updater = [this] {
        return updaterSurroundings();
    };
    all.quit = [this] {
        ++quits;
    };
    return all;
}

updater::UpdateChecker::Surroundings AppStage::updaterSurroundings()
{
    updater::UpdateChecker::Surroundings checker;
    checker.defaults = &store;
    checker.currentVersion = QStringLiteral("1.0");
    checker.now = &QDateTime::currentDateTimeUtc;
    checker.runAfter = [this](std::chrono::milliseconds delay, QObject *, std::function<void()> action) {
        checks.emplace_back(delay, std::move(action));
    };
    checker.runEvery = [this](std::chrono::milliseconds delay, std::function<void()> action) {
        checks.emplace_back(delay, std::move(action));
        return std::make_unique<QObject>();
    };
    return checker;
}

ZorelApp &AppStage::app()
{
    if (!m_app) {
        m_app = std::make_unique<ZorelApp>(surroundings());
    }
    return *m_app;
}

void AppStage::startWithState(const QString &state)
{
    sidecar.play(
        {step(QStringLiteral("echo_commands_to"), sidecar.pathOf(QStringLiteral("commands"))),
         step(QStringLiteral("emit"), QJsonObject{{QStringLiteral("event"), QStringLiteral("ready")}}),
         step(QStringLiteral("await"), QStringLiteral("set_training_profile")),
         step(QStringLiteral("emit"), status(state)), step(QStringLiteral("await"), QStringLiteral("quit")),
         step(QStringLiteral("wait_for_file"), sidecar.pathOf(QStringLiteral("saved"))),
         step(QStringLiteral("exit"), 0)});
    app().contentAppeared();
    QTRY_VERIFY_WITH_TIMEOUT(app().backend().ready() && app().backend().status().state == state, 30'000);
}

QString AppStage::commands() const
{
    QFile file(sidecar.pathOf(QStringLiteral("commands")));
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QStringList names;
    for (const QByteArray &line : file.readAll().split('\n')) {
        const QJsonObject command = QJsonDocument::fromJson(line).object();
        const QString name = command.value(QLatin1String("cmd")).toString();
        if (name == QLatin1String("start")) {
            names.append(command.value(QLatin1String("resume")).toBool() ? QStringLiteral("start-resumed")
                                                                         : QStringLiteral("start"));
        } else if (!name.isEmpty() && !name.startsWith(QLatin1String("set_"))) {
            names.append(name);
        }
    }
    return names.join(QLatin1Char(' '));
}

void AppStage::letSidecarExit()
{
    QFile saved(sidecar.pathOf(QStringLiteral("saved")));
    QVERIFY(saved.open(QIODevice::WriteOnly));
}

} // namespace zorel::tests
