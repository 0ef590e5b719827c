#include "updater/InstallTask.h"

#include "tests/updater/Installation.h"

#include <csignal>
#include <limits>

#include <sys/resource.h>

using namespace zorel::tests;
using namespace zorel::updater;
using namespace std::chrono_literals;

namespace {

template <class State>
bool is(const InstallState &state)
{
    return state.is<State>();
}

} // namespace

/// How an installation goes, from the download to the new version, and how it ends early.
class InstallTaskTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUpdateIsInstalled_data();
    void anUpdateIsInstalled();
    void theStatesComeInOrder();
    void theScriptWaitsForThisProcess();
    void theLauncherIsStartedExactlySo();
    void aFailingLauncherFails_data();
    void aFailingLauncherFails();
    void aFullDiskFailsAndTheNextTryWorks();
    void withoutRoomForItsFileNothingIsDownloaded();
    void withoutRoomForItsBundleNothingIsInstalled();
    void theDownloadNamesTheProgram();
    void cancellingWorksInEveryState_data();
    void cancellingWorksInEveryState();
    void progressIsPublishedThirtyTimesASecondAtMost();
};

void InstallTaskTest::anUpdateIsInstalled_data()
{
    QTest::addColumn<QString>("extension");
    for (const char *extension : {"zip", "dmg", "tar", "gz", "tbz", "bz2"}) {
        QTest::newRow(extension) << QString::fromUtf8(extension);
    }
}

void InstallTaskTest::anUpdateIsInstalled()
{
    QFETCH(QString, extension);
    Installation installation(extension);
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.isRelaunched());
    QCOMPARE(InstallStage::versionAt(installation.stage.installed()), QByteArray("2"));
    QCOMPARE(installation.stage.callsOf("open"),
             QByteArrayList{"open|" + installation.stage.installed().toUtf8() + '|'});
    QVERIFY(contentsOf(installation.handoff.logPath).contains("[updater] swap ok (user perms)\n"));
    QVERIFY(!installation.stage.hasAttachedImage());
}

void InstallTaskTest::theStatesComeInOrder()
{
    Installation installation;
    QCOMPARE(installation.run(), std::nullopt);
    // In the order of the alternatives: downloading 0, verifying 3, installing 4, relaunching 5.
    QCOMPARE(installation.stateKinds(), (std::vector<std::size_t>{0, 3, 4, 5}));
    QVERIFY(installation.states[0] == InstallState::Value(InstallState::Downloading{}));
    const auto lastProgress = std::ranges::find_if(installation.states, is<InstallState::Verifying>) - 1;
    QVERIFY(*lastProgress == InstallState::Value(InstallState::Downloading{installation.archive.size(),
                                                                           installation.archive.size()}));
    QVERIFY(installation.isRelaunched());
}

void InstallTaskTest::theScriptWaitsForThisProcess()
{
    Installation installation;
    QProcess application;
    application.start(QStringLiteral("sleep"), {QStringLiteral("1000")});
    QVERIFY(application.waitForStarted());
    installation.surroundings.processId = application.processId();
    // Ends with the first wait: the sentinel is there.
    QCOMPARE(installation.run(), std::nullopt);
    const QString folder =
        installation.stage.updaterFolder() + u'/' + installation.stage.workingFolders().value(0);
    QCOMPARE(installation.handoff, RelaunchHandoff::in(folder));
    QCOMPARE(installation.handoff.scriptPath, folder + QStringLiteral("/install.sh"));
    QCOMPARE(installation.handoff.logPath, folder + QStringLiteral("/install.log"));
    QCOMPARE(installation.handoff.exitedSentinelPath, folder + QStringLiteral("/exited.sentinel"));
    QVERIFY(contentsOf(installation.handoff.scriptPath)
                .startsWith("#!/bin/bash\nset -u\nPID=" + QByteArray::number(application.processId()) +
                            "\nNEW_APP='" + folder.toUtf8() +
                            "/staged/Talvex LLM Trainer.app'\nTARGET_APP='" +
                            installation.stage.installed().toUtf8() + "'\nLOG_FILE='" + folder.toUtf8() +
                            "/install.log'\nSENTINEL='" + folder.toUtf8() + "/exited.sentinel'\n"));
    QVERIFY(installation.handoff.writeExitedSentinel());
    QCOMPARE(contentsOf(installation.handoff.exitedSentinelPath), QByteArray("exited"));
    QVERIFY(installation.isRelaunched());
    QVERIFY(contentsOf(installation.handoff.logPath).contains("[updater] sentinel present, proceeding\n"));
    QCOMPARE(application.state(), QProcess::Running);
    application.kill();
    application.waitForFinished();
}

void InstallTaskTest::theLauncherIsStartedExactlySo()
{
    Installation installation;
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.isRelaunched());
    QCOMPARE(installation.stage.callsOf("bash").value(0), "bash|-c|(nohup /bin/bash '" +
                                                              installation.handoff.scriptPath.toUtf8() +
                                                              "' </dev/null >/dev/null 2>&1 &)|");
}

void InstallTaskTest::aFailingLauncherFails_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QString>("text");
    QTest::newRow("exit code") << QByteArray("#!/bin/sh\nexit 3\n")
                               << QStringLiteral("installer launcher exited 3");
    QTest::newRow("missing") << QByteArray() << QString();
    QTest::newRow("hanging") << QByteArray("#!/bin/sh\nexec /bin/sleep 1000\n")
                             << QStringLiteral("launcher did not finish within 2 seconds: ");
}

void InstallTaskTest::aFailingLauncherFails()
{
    QFETCH(QByteArray, script);
    QFETCH(QString, text);
    Installation installation;
    const QString tool = installation.stage / "launcher";
    if (!script.isEmpty()) {
        writeExecutable(tool, script);
    }
    installation.surroundings.tools.bash = tool;
    installation.surroundings.limits.launcher = 2s;
    const QString expected = text.isEmpty() ? tool + QStringLiteral(": No such file or directory") : text;
    QCOMPARE(installation.run(), std::optional(UpdateError(UpdateError::RelaunchFailed{expected})));
    QVERIFY(installation.leftNothing());
}

void InstallTaskTest::aFullDiskFailsAndTheNextTryWorks()
{
    // Files of this process and its tools cannot grow beyond this, which is how a full disk looks to them: at
    // first not even the download fits, then not all that is unpacked from it.
    std::signal(SIGXFSZ, SIG_IGN);
    Installation installation;
    rlimit limit = {};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlim_t unlimited = limit.rlim_cur;
    std::vector<std::optional<UpdateError>> errors;
    for (const qsizetype size : {installation.archive.size() / 2, installation.archive.size()}) {
        limit.rlim_cur = static_cast<rlim_t>(size);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        errors.push_back(installation.run());
        limit.rlim_cur = unlimited;
        ::setrlimit(RLIMIT_FSIZE, &limit);
        QVERIFY(installation.leftNothing());
    }
    QCOMPARE(errors[0],
             extractionFailed(QStringLiteral("the download could not be written: File too large")));
    QCOMPARE(caseOf(errors[1]), UpdateError::Case::extractionFailed);
    QVERIFY2(
        errors[1]->message().startsWith(QStringLiteral("Couldn't unpack the update: tar exited with code ")),
        qPrintable(errors[1]->message()));
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.isRelaunched());
    QCOMPARE(InstallStage::versionAt(installation.stage.installed()), QByteArray("2"));
}

void InstallTaskTest::withoutRoomForItsFileNothingIsDownloaded()
{
    Installation installation;
    installation.host.update.sizeBytes = std::numeric_limits<qint64>::max();
    const auto error = installation.run();
    QVERIFY(error);
    QCOMPARE(error->errorCase(), UpdateError::Case::extractionFailed);
    QVERIFY2(error->message().contains(QStringLiteral(" has room for ")), qPrintable(error->message()));
    QVERIFY(installation.host.server.requests().empty());
    QVERIFY(installation.leftNothing());
}

void InstallTaskTest::withoutRoomForItsBundleNothingIsInstalled()
{
    Installation installation;
    // Of 512 TiB, as they would be copied; here they are the names of one file that takes up no room.
    const QByteArray bundle = QFile::encodeName(installation.stage / "New.app");
    writeFile(installation.stage / "New.app/0", "");
    QVERIFY(QFile::resize(installation.stage / "New.app/0", qint64{1} << 40));
    for (int name = 1; name < 512; ++name) {
        QCOMPARE(::link((bundle + "/0").constData(), (bundle + '/' + QByteArray::number(name)).constData()),
                 0);
    }
    const QString tool = installation.stage / "tar";
    writeExecutable(tool, "#!/bin/sh\nexec mv '" + bundle + "' \"$4\"\n");
    installation.surroundings.tools.tar = tool;
    installation.surroundings.limits.unpackedBytes = std::numeric_limits<qint64>::max();
    const auto error = installation.run();
    QVERIFY(error);
    const QString reason = QStringLiteral("Couldn't unpack the update: ") +
                           QFileInfo(installation.stage.installed()).path() +
                           QStringLiteral(" has room for ");
    QVERIFY2(error->message().startsWith(reason), qPrintable(error->message()));
    QVERIFY(error->message().endsWith(QStringLiteral(" bytes only, and 562949953421312 are needed")));
    QVERIFY(installation.stage.callsOf("bash").isEmpty());
    QVERIFY(installation.leftNothing());
}

void InstallTaskTest::theDownloadNamesTheProgram()
{
    Installation installation;
    QCOMPARE(installation.run(), std::nullopt);
    QVERIFY(installation.isRelaunched());
    QCOMPARE(installation.host.server.lastRequest().headers.value("user-agent"), QByteArray("Trainer/1"));
}

void InstallTaskTest::cancellingWorksInEveryState_data()
{
    QTest::addColumn<QString>("extension");
    QTest::addColumn<std::size_t>("state");
    for (const char *extension : {"zip", "dmg", "gz"}) {
        for (const std::size_t state : {0U, 3U, 4U, 5U}) {
            QTest::addRow("%s, state %zu", extension, state) << QString::fromUtf8(extension) << state;
        }
    }
}

void InstallTaskTest::cancellingWorksInEveryState()
{
    QFETCH(QString, extension);
    QFETCH(std::size_t, state);
    Installation installation(extension);
    installation.onState = [&](const InstallState &entered) {
        if (entered.value().index() == state) {
            installation.cancellation.cancel();
        }
    };
    QCOMPARE(installation.run(), cancelled());
    QVERIFY(installation.leftNothing());
    QVERIFY(installation.stage.callsOf("bash").isEmpty());
}

void InstallTaskTest::progressIsPublishedThirtyTimesASecondAtMost()
{
    Installation installation;
    const auto begin = std::chrono::steady_clock::now();
    QCOMPARE(installation.run(), std::nullopt);
    const auto seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    const auto told = std::ranges::count_if(installation.states, is<InstallState::Downloading>);
    QVERIFY(double(told) <= 30 * (seconds + 1));
    QVERIFY(installation.isRelaunched());
}

QTEST_GUILESS_MAIN(InstallTaskTest)
#include "InstallTaskTest.moc"
