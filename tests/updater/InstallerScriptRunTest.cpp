#include "tests/updater/ScriptRun.h"

#include <csignal>

using namespace zorel::tests;

namespace {

/// An application that does not exit.
class Application
{
public:
    Application()
    {
        m_process.start(QStringLiteral("/bin/sleep"), {QStringLiteral("1000")});
        m_process.waitForStarted();
    }
    ~Application()
    {
        m_process.kill();
        m_process.waitForFinished();
    }
    qint64 processId() const { return m_process.processId(); }
    bool isRunning()
    {
        m_process.waitForFinished(0);
        return m_process.state() == QProcess::Running;
    }
    bool wasKilled()
    {
        m_process.waitForFinished(30'000);
        return m_process.exitStatus() == QProcess::CrashExit && m_process.exitCode() == SIGKILL;
    }

private:
    QProcess m_process;
};

} // namespace

class InstallerScriptRunTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBundlesAreSwapped();
    void theToolsAreCalledInOrder();
    void anApplicationThatIsGoneIsNotWaitedFor();
    void theSentinelEndsTheWait();
    void anApplicationThatStaysIsKilledAfterThirtySeconds();
    void aFailedMoveAsksTheAdministrator();
    void aFailedCopyPutsTheOldBundleBackAndAsksTheAdministrator();
    void aFailedAdministratorCopyRestoresTheBackup();
    void aRefusedAdministratorPromptKeepsTheOldBundle();
    void aFolderWithoutRightsNeedsTheAdministrator();
    void aTargetThatIsGoneIsCopiedToWithoutABackup();
    void aTargetThatIsGoneAndCannotBeCopiedToFails();
    void aTargetThatIsALinkIsReplacedByTheBundle();
    void failingMacToolsDoNotStopTheSwap();
    void pathsAreNeverRunAsCommands_data();
    void pathsAreNeverRunAsCommands();
    void theAdministratorsCommandRunsNoPath_data();
    void theAdministratorsCommandRunsNoPath();
};

void InstallerScriptRunTest::theBundlesAreSwapped()
{
    ScriptRun run;
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QVERIFY(run.logged("swap ok (user perms)"));
    QVERIFY(run.logged("relaunching"));
    QVERIFY(run.backups().isEmpty());
    QVERIFY2(run.log().contains(" start pid=" + QByteArray::number(run.script.processId) + " target=" +
                                run.script.targetApp.toUtf8() + " new=" + run.script.newApp.toUtf8()),
             run.log().constData());
}

void InstallerScriptRunTest::theToolsAreCalledInOrder()
{
    ScriptRun run;
    QCOMPARE(run.run(), 0);
    const QByteArray target = run.script.targetApp.toUtf8();
    const QByteArray fresh = run.script.newApp.toUtf8();
    QByteArrayList calls = run.stage.calls();
    const QByteArray backup = run.stage.callsOf("mv").value(0).split('|').value(2);
    QVERIFY(backup.startsWith(target + ".old-"));
    // This one runs in the background.
    QVERIFY(calls.removeOne("rm|-rf|" + backup + '|'));
    const QByteArrayList expected{"sleep|0.4|",
                                  "xattr|-dr|com.apple.quarantine|" + fresh + '|',
                                  "codesign|--force|--deep|--sign|-|" + fresh + '|',
                                  "mv|" + target + '|' + backup + '|',
                                  "cp|-R|" + fresh + '|' + target + '|',
                                  "codesign|--force|--deep|--sign|-|" + target + '|',
                                  "xattr|-dr|com.apple.quarantine|" + target + '|',
                                  "lsregister|-f|" + target + '|',
                                  "open|" + target + '|'};
    QCOMPARE(calls, expected);
}

void InstallerScriptRunTest::anApplicationThatIsGoneIsNotWaitedFor()
{
    ScriptRun run;
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.sleeps("0.25"), 0);
    QCOMPARE(run.sleeps("0.4"), 1);
}

void InstallerScriptRunTest::theSentinelEndsTheWait()
{
    Application application;
    ScriptRun run;
    run.script.processId = application.processId();
    writeFile(run.script.sentinel, "exited");
    QCOMPARE(run.run(), 0);
    QVERIFY(run.logged("sentinel present, proceeding"));
    QCOMPARE(run.sleeps("0.25"), 0);
    QCOMPARE(run.sleeps("0.4"), 2);
    QVERIFY(application.isRunning());
    QCOMPARE(run.targetVersion(), QByteArray("2"));
}

void InstallerScriptRunTest::anApplicationThatStaysIsKilledAfterThirtySeconds()
{
    Application application;
    ScriptRun run;
    run.script.processId = application.processId();
    const QByteArray message =
        "pid " + QByteArray::number(application.processId()) + " still alive after 30s, force-killing";
    QCOMPARE(run.run(), 0);
    QVERIFY(application.wasKilled());
    QVERIFY(run.logged(message.constData()));
    // 120 times 0.25 s.
    QCOMPARE(run.sleeps("0.25"), 120);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
}

void InstallerScriptRunTest::aFailedMoveAsksTheAdministrator()
{
    ScriptRun run;
    run.stage.environment["STANDIN_FAIL"] = "mv:1";
    QCOMPARE(run.run(), 0);
    QVERIFY(run.logged("swap failed under user perms — escalating"));
    QVERIFY(run.logged("swap ok (admin)"));
    QCOMPARE(run.stage.callsOf("osascript").size(), 1);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QVERIFY(run.backups().isEmpty());
}

void InstallerScriptRunTest::aFailedCopyPutsTheOldBundleBackAndAsksTheAdministrator()
{
    ScriptRun run;
    run.stage.environment["STANDIN_FAIL"] = "cp:1";
    run.stage.environment["STANDIN_ADMIN"] = "refuse";
    QCOMPARE(run.run(), 0);
    QVERIFY(run.logged("swap failed under user perms — escalating"));
    QCOMPARE(run.targetVersion(), QByteArray("1"));
    QVERIFY(run.backups().isEmpty());
}

void InstallerScriptRunTest::aFailedAdministratorCopyRestoresTheBackup()
{
    ScriptRun run;
    run.stage.environment["STANDIN_FAIL"] = "cp:1,cp:2";
    QCOMPARE(run.run(), 1);
    QVERIFY(run.logged("admin swap failed; restoring backup"));
    QCOMPARE(run.targetVersion(), QByteArray("1"));
    QVERIFY(run.backups().isEmpty());
    // The old application is opened again.
    QCOMPARE(run.stage.calls().last(), "open|" + run.script.targetApp.toUtf8() + '|');
    QVERIFY(!run.logged("relaunching"));
}

void InstallerScriptRunTest::aRefusedAdministratorPromptKeepsTheOldBundle()
{
    ScriptRun run;
    run.stage.environment["STANDIN_FAIL"] = "mv:1";
    run.stage.environment["STANDIN_ADMIN"] = "refuse";
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.targetVersion(), QByteArray("1"));
    QVERIFY(run.backups().isEmpty());
    QCOMPARE(run.stage.callsOf("open").size(), 1);
}

void InstallerScriptRunTest::aFolderWithoutRightsNeedsTheAdministrator()
{
    ScriptRun run;
    run.stage.takeToolsAlong();
    run.stage.environment["STANDIN_LOCKED"] = QFile::encodeName(run.folderOfTarget());
    QVERIFY(QFile::setPermissions(run.folderOfTarget(), QFile::ReadOwner | QFile::ExeOwner));
    run.removesBackup = false;
    QVERIFY(succeedsWithoutRights(run.stage / ".", [&run] {
        return run.run() == 0 && run.logged("swap ok (admin)") && run.targetVersion() == "2" &&
               run.backups().size() == 1;
    }));
    QFile::setPermissions(run.folderOfTarget(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void InstallerScriptRunTest::aTargetThatIsGoneIsCopiedToWithoutABackup()
{
    ScriptRun run;
    QVERIFY(QDir().rename(run.stage.installed(), run.stage / "moved.app"));
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QVERIFY(run.stage.callsOf("mv").isEmpty());
    QVERIFY(run.stage.callsOf("osascript").isEmpty());
    QCOMPARE(InstallStage::versionAt(run.stage / "moved.app"), QByteArray("1"));
    QCOMPARE(run.stage.callsOf("open").size(), 1);
}

void InstallerScriptRunTest::aTargetThatIsGoneAndCannotBeCopiedToFails()
{
    ScriptRun run;
    QVERIFY(QDir().rename(run.stage.installed(), run.stage / "moved.app"));
    run.stage.environment["STANDIN_FAIL"] = "cp:1";
    QCOMPARE(run.run(), 1);
    QVERIFY(run.logged("install failed"));
    QVERIFY(run.stage.callsOf("open").isEmpty());
}

void InstallerScriptRunTest::aTargetThatIsALinkIsReplacedByTheBundle()
{
    ScriptRun run;
    QVERIFY(QDir().rename(run.stage.installed(), run.stage / "real.app"));
    makeLink(run.stage.installed(), QFile::encodeName(run.stage / "real.app"));
    QCOMPARE(run.run(), 0);
    QVERIFY(!QFileInfo(run.stage.installed()).isSymLink());
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QCOMPARE(InstallStage::versionAt(run.stage / "real.app"), QByteArray("1"));
    QVERIFY(run.backups().isEmpty());
}

void InstallerScriptRunTest::failingMacToolsDoNotStopTheSwap()
{
    ScriptRun run;
    run.stage.environment["STANDIN_FAIL"] = "xattr,codesign,lsregister";
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QCOMPARE(run.stage.callsOf("open").size(), 1);
}

void InstallerScriptRunTest::pathsAreNeverRunAsCommands_data()
{
    QTest::addColumn<QString>("installedName");
    for (const char *name : {"it's \"quoted\"/A.app", "'; touch pwned; '/A.app", "$(touch pwned)/A.app",
                             "`touch pwned`/A.app", "\"; touch pwned; \"/A.app", "back\\slash/A\\.app",
                             "two\nlines/A.app", "-rf/-x.app", "; touch pwned/A.app", "* ?/A.app"}) {
        QTest::addRow("%s", QByteArray(name).replace('\n', ' ').constData()) << QString::fromUtf8(name);
    }
}

void InstallerScriptRunTest::pathsAreNeverRunAsCommands()
{
    QFETCH(QString, installedName);
    ScriptRun run(installedName);
    QCOMPARE(run.run(), 0);
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QVERIFY(run.logged("swap ok (user perms)"));
    QVERIFY(!QFile::exists(run.stage / "pwned"));
    QVERIFY(!QFile::exists(run.folderOfTarget() + QStringLiteral("/pwned")));
}

void InstallerScriptRunTest::theAdministratorsCommandRunsNoPath_data()
{
    QTest::addColumn<QString>("installedName");
    for (const char *name : {"$(touch pwned)/A.app", "`touch pwned`/A.app", "; touch pwned/A.app",
                             "-rf/-x.app", "a && touch pwned/A.app", "* ?/A.app"}) {
        QTest::addRow("%s", name) << QString::fromUtf8(name);
    }
}

void InstallerScriptRunTest::theAdministratorsCommandRunsNoPath()
{
    QFETCH(QString, installedName);
    ScriptRun run(installedName);
    QVERIFY(zorel::updater::fitsAdministratorCommand(run.script.targetApp));
    run.stage.environment["STANDIN_FAIL"] = "mv:1";
    QCOMPARE(run.run(), 0);
    QVERIFY(run.logged("swap ok (admin)"));
    QCOMPARE(run.targetVersion(), QByteArray("2"));
    QVERIFY(!QFile::exists(run.stage / "pwned"));
    QVERIFY(!QFile::exists(run.folderOfTarget() + QStringLiteral("/pwned")));
}

QTEST_GUILESS_MAIN(InstallerScriptRunTest)
#include "InstallerScriptRunTest.moc"
