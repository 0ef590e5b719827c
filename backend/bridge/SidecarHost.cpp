#include "backend/bridge/SidecarLocator.h"
#include "platform/Bundle.h"
#include "platform/StandardFolders.h"

#include <QFileInfo>
#include <QProcess>

namespace zorel::backend::bridge {

namespace {

std::optional<int> runProbe(const QString &program, const QStringList &arguments,
                            std::chrono::milliseconds limit)
{
    QProcess probe;
    probe.setProgram(program);
    probe.setArguments(arguments);
    probe.setStandardInputFile(QProcess::nullDevice());
    probe.setStandardOutputFile(QProcess::nullDevice());
    probe.setStandardErrorFile(QProcess::nullDevice());
    probe.start();
    if (!probe.waitForFinished(static_cast<int>(limit.count()))) {
        probe.kill();
        probe.waitForFinished(-1);
        return std::nullopt;
    }
    return probe.exitStatus() == QProcess::NormalExit ? std::optional(probe.exitCode()) : std::nullopt;
}

bool mayBeRun(const QString &path)
{
    const QFileInfo file(path);
    return file.isFile() && file.isExecutable();
}

} // namespace

SidecarHost SidecarHost::system(std::chrono::milliseconds probeLimit)
{
    SidecarHost host;
    if (qEnvironmentVariableIsSet("ZOREL_SCRIPTS_ROOT")) {
        host.scriptsRootOverride = qEnvironmentVariable("ZOREL_SCRIPTS_ROOT");
    }
    host.home = platform::StandardFolders::current().home;
    if (const std::optional<platform::Bundle> &bundle = platform::mainBundle()) {
        host.bundleResources = bundle->resources;
        host.bundleParent = bundle->parent;
    }
    host.checkoutSidecar = QStringLiteral(ZOREL_CHECKOUT_SIDECAR);
    host.fileExists = [](const QString &path) {
        return QFileInfo::exists(path);
    };
    host.isExecutableFile = mayBeRun;
    host.run = [probeLimit](const QString &program, const QStringList &arguments) {
        return runProbe(program, arguments, probeLimit);
    };
    return host;
}

} // namespace zorel::backend::bridge
