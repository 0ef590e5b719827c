#pragma once

#include "tests/updater/InstallStage.h"
#include "updater/InstallerScript.h"

namespace zorel::tests {

/// The installer script on a stage, with the stand-ins put in place of the Mac's tools and of what moves,
/// copies and removes.
class ScriptRun
{
public:
    explicit ScriptRun(const QString &installedName = QStringLiteral("Applications/Talvex LLM Trainer.app"))
        : stage(installedName)
        , script{endedProcess(), stage / "work/staged/Talvex LLM Trainer.app", stage.installed(),
                 stage / "work/install.log", stage / "work/exited.sentinel"}
    {
        InstallStage::makeBundle(script.newApp, "2");
    }

    QString scriptPath() const { return stage / "work/install.sh"; }
    QString folderOfTarget() const { return QFileInfo(stage.installed()).path(); }

    void write() const
    {
        writeFile(scriptPath(), script.text().toUtf8());
        runProgram(stage.tools() + QLatin1String("/substitute"), {scriptPath()});
    }

    /// Runs the script to its end, and what it leaves in the background; returns its exit code.
    int run()
    {
        write();
        QProcess process;
        QProcessEnvironment environment;
        for (const auto &[name, value] : stage.environment.asKeyValueRange()) {
            environment.insert(QString::fromUtf8(name), QString::fromUtf8(value));
        }
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(stage / ".");
        process.start(QStringLiteral("/bin/bash"), {scriptPath()});
        if (!process.waitForFinished(60'000)) {
            return -1;
        }
        const bool isDone = !removesBackup || !log().contains("relaunching") ||
                            QTest::qWaitFor([this] { return backups().isEmpty(); }, 30'000);
        return isDone ? process.exitCode() : -1;
    }

    QByteArray log() const { return contentsOf(script.logFile); }
    bool logged(const char *line) const
    {
        return log().split('\n').contains("[updater] " + QByteArray(line));
    }
    QByteArray targetVersion() const { return InstallStage::versionAt(stage.installed()); }
    QStringList backups() const { return namesIn(folderOfTarget()).filter(QStringLiteral(".app.old-")); }
    /// How often the script slept for so long.
    qsizetype sleeps(const QByteArray &seconds) const
    {
        return stage.calls().count("sleep|" + seconds + '|');
    }

    InstallStage stage;
    updater::InstallerScript script;
    bool removesBackup = true; ///< whether the script has the rights to
};

} // namespace zorel::tests
