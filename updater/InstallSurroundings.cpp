#include "updater/InstallSurroundings.h"

#include "platform/Bundle.h"
#include "platform/StandardFolders.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace zorel::updater {

ToolPaths ToolPaths::preferring(const QString &folder)
{
    ToolPaths tools;
    for (QString *tool : {&tools.ditto, &tools.tar, &tools.hdiutil, &tools.cp, &tools.bash}) {
        const QFileInfo standIn(QDir(folder), QFileInfo(*tool).fileName());
        if (standIn.isFile() && standIn.isExecutable()) {
            *tool = standIn.absoluteFilePath();
        }
    }
    return tools;
}

InstallSurroundings InstallSurroundings::system()
{
    InstallSurroundings surroundings;
    surroundings.cachesFolder = platform::StandardFolders::current().caches;
    surroundings.temporaryFolder = QDir::tempPath();
    if (const auto &bundle = platform::mainBundle()) {
        surroundings.targetBundle = bundle->path;
    }
    surroundings.processId = QCoreApplication::applicationPid();
    surroundings.environment = toolEnvironment(platform::currentEnvironment());
    surroundings.userAgent = "TalvexLLMTrainer";
    return surroundings;
}

platform::Environment toolEnvironment(platform::Environment environment)
{
    constexpr const char *meddling[] = {"BASH_ENV",
                                        "ENV",
                                        "BASHOPTS",
                                        "SHELLOPTS",
                                        "POSIXLY_CORRECT",
                                        "CDPATH",
                                        "GLOBIGNORE",
                                        "TAR_OPTIONS",
                                        "TAR_READER_OPTIONS",
                                        "GZIP",
                                        "BZIP",
                                        "BZIP2",
                                        "XZ_DEFAULTS",
                                        "XZ_OPT",
                                        "COPYFILE_DISABLE",
                                        "DITTONORSRC",
                                        "DITTOABORT"};
    for (const char *name : meddling) {
        environment.remove(name);
    }
    environment.removeIf([](const auto &variable) { return variable.key().startsWith("BASH_FUNC_"); });
    return environment;
}

} // namespace zorel::updater
