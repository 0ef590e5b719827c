#include "bench/support/ScriptedBackend.h"

#include <QDir>
#include <QEventLoop>
#include <QFile>

namespace zorel::bench {

using backend::bridge::BackendController;

void writeInterpreter(const QString &home, const QByteArray &script)
{
    const QString folder = home + QStringLiteral("/Library/Python/3.12/bin");
    QFile file(folder + QStringLiteral("/python3"));
    if (!QDir().mkpath(folder) || !file.open(QIODevice::WriteOnly)) {
        qFatal("no temporary folder");
    }
    file.write("#!/bin/sh\n" + script + "\n");
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

ScriptedBackend::ScriptedBackend(const QByteArray &script, std::optional<bool> switches)
    : m_defaults(switches)
    , m_settings(m_defaults, platform::StandardFolders::below(m_folder.path()))
    , m_controller(m_settings, surroundings())
{
    writeInterpreter(m_folder.path(), script);
}

BackendController::Surroundings ScriptedBackend::surroundings()
{
    BackendController::Surroundings outside = BackendController::Surroundings::system();
    outside.host = [this] {
        backend::bridge::SidecarHost host;
        host.home = m_folder.path();
        host.scriptsRootOverride = m_folder.path();
        host.fileExists = [](const QString &) {
            return true;
        };
        host.isExecutableFile = [](const QString &) {
            return true;
        };
        host.run = [](const QString &, const QStringList &) {
            return 0;
        };
        return host;
    };
    return outside;
}

void ScriptedBackend::waitForReady()
{
    QEventLoop loop;
    QObject::connect(&m_controller, &BackendController::readyChanged, &loop, &QEventLoop::quit);
    loop.exec();
}

void ScriptedBackend::launchAndWaitForExit()
{
    QEventLoop loop;
    QObject::connect(&m_controller, &BackendController::backendExited, &loop, &QEventLoop::quit);
    m_controller.launch();
    loop.exec();
}

} // namespace zorel::bench
