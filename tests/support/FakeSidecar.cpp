#include "tests/support/FakeSidecar.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace zorel::tests {

FakeSidecar::FakeSidecar()
{
    scriptsRoot = root();
    QDir(root()).mkpath(QStringLiteral("src"));
    QDir(root()).mkpath(QStringLiteral("home/Library/Python/3.12/bin"));
    QFile::copy(QStringLiteral(ZOREL_FAKE_SIDECAR), pathOf(QStringLiteral("src/app_backend.py")));
    m_environment = backend::bridge::BackendController::Surroundings::system().environment();
}

void FakeSidecar::play(const QJsonArray &scenario)
{
    setEnvironment(QStringLiteral("ZOREL_FAKE_SCENARIO"),
                   QString::fromUtf8(QJsonDocument(scenario).toJson(QJsonDocument::Compact)));
}

backend::bridge::BackendController::Surroundings FakeSidecar::surroundings()
{
    QFile::remove(pathOf(QStringLiteral("home/Library/Python/3.12/bin/python3")));
    QFile::link(interpreter, pathOf(QStringLiteral("home/Library/Python/3.12/bin/python3")));
    return {
        [this] {
            backend::bridge::SidecarHost host;
            host.scriptsRootOverride = scriptsRoot;
            host.fileExists = [this](const QString &path) {
                return scriptsExist && QFileInfo::exists(path);
            };
            // The search knows fixed places only; the interpreter to run stands in for the first of them.
            host.home = pathOf(QStringLiteral("home"));
            host.isExecutableFile = [](const QString &) {
                return true;
            };
            host.run = [](const QString &, const QStringList &) {
                return 0;
            };
            return host;
        },
        [this] { return m_environment; },
        [this](std::chrono::milliseconds delay, QObject *, std::function<void()> action) {
            timers.push_back({delay, std::move(action)});
        },
    };
}

} // namespace zorel::tests
