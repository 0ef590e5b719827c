#include "platform/ChildProcess.h"
#include "platform/BrokenPipe.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace zorel::platform;

namespace {

/// Milliseconds that another process is given on a loaded machine.
constexpr int patience = 60'000;

ChildProgram shell(const QString &script)
{
    return {QStringLiteral("/bin/sh"),
            {QStringLiteral("-c"), script},
            QStringLiteral("/"),
            {{"PATH", "/usr/bin:/bin"}}};
}

int statusOf(ChildProcess &child)
{
    QSignalSpy exited(&child, &ChildProcess::exited);
    if (!exited.wait(patience)) {
        return -1;
    }
    return exited.at(0).at(0).toInt();
}

QByteArray readAll(const Descriptor &descriptor)
{
    QByteArray received;
    char buffer[4096];
    for (ssize_t count = 0; (count = ::read(descriptor.number(), buffer, sizeof buffer)) > 0;) {
        received.append(buffer, count);
    }
    return received;
}

qsizetype entriesOf(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot).size();
}

} // namespace

class ChildProcessTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { ignoreBrokenPipe(); }
    void exitCodesAreReported_data();
    void exitCodesAreReported();
    void signalsAreReportedByTheirNumber_data();
    void signalsAreReportedByTheirNumber();
    void launchFailuresNameTheCause_data();
    void launchFailuresNameTheCause();
    void theChildSeesOnlyItsStandardChannels();
    void theEnvironmentIsHandedOnByteForByte();
    void theChildHandlesBrokenPipesAsUsual();
    void theChildIsAloneInItsProcessGroup();
    void theExitIsSeenWhileAGrandchildHoldsThePipes();
    void aThousandLaunchesLeaveNothingBehind();
    void destroyingTheObjectLeavesTheChildRunning();
};

void ChildProcessTest::exitCodesAreReported_data()
{
    QTest::addColumn<int>("code");
    for (const int code : {0, 1, 255}) {
        QTest::addRow("%d", code) << code;
    }
}

void ChildProcessTest::exitCodesAreReported()
{
    QFETCH(int, code);
    ChildProcess child(shell(QStringLiteral("exit %1").arg(code)));
    QCOMPARE(statusOf(child), code);
    QVERIFY(!child.isRunning());
    QCOMPARE(child.exitStatus(), code);
}

void ChildProcessTest::signalsAreReportedByTheirNumber_data()
{
    QTest::addColumn<int>("signal");
    for (const int signal : {SIGKILL, SIGSEGV, SIGTERM}) {
        QTest::addRow("%d", signal) << signal;
    }
}

void ChildProcessTest::signalsAreReportedByTheirNumber()
{
    QFETCH(int, signal);
    ChildProcess child(shell(QStringLiteral("read line")));
    QVERIFY(child.isRunning());
    child.sendSignal(signal);
    QCOMPARE(statusOf(child), signal);
}

void ChildProcessTest::launchFailuresNameTheCause_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("description");
    const QString here = QStringLiteral("/");
    QTest::newRow("missing") << QStringLiteral("/nowhere/python3") << here
                             << QStringLiteral("/nowhere/python3: No such file or directory");
    QTest::newRow("not executable") << QStringLiteral("/etc/passwd") << here
                                    << QStringLiteral("/etc/passwd: Permission denied");
    QTest::newRow("a folder") << QStringLiteral("/usr/bin") << here
                              << QStringLiteral("/usr/bin: Permission denied");
    QTest::newRow("working folder gone") << QStringLiteral("/bin/sh") << QStringLiteral("/nowhere")
                                         << QStringLiteral("the folder /nowhere does not exist");
}

void ChildProcessTest::launchFailuresNameTheCause()
{
    QFETCH(QString, executable);
    QFETCH(QString, folder);
    QFETCH(QString, description);
    try {
        const ChildProcess child({executable, {}, folder, {}});
        QFAIL("launched");
    } catch (const LaunchError &error) {
        QCOMPARE(QString::fromUtf8(error.what()), description);
    }
}

void ChildProcessTest::theChildSeesOnlyItsStandardChannels()
{
    // One that is not close-on-exec, as a careless library may leave it.
    const Descriptor leaked(::open("/dev/null", O_RDONLY));
    QVERIFY(leaked.isOpen());
    const QString listing = QStringLiteral("import os\n"
                                           "for number in range(256):\n"
                                           "    try: os.fstat(number)\n"
                                           "    except OSError: continue\n"
                                           "    print(number, end=' ')\n");
    ChildProcess child(
        {QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), listing}, QStringLiteral("/"), {}});
    ChildPipes pipes = child.takePipes();
    pipes.input.close();
    QCOMPARE(readAll(pipes.output), QByteArray("0 1 2 "));
    QCOMPARE(statusOf(child), 0);
}

void ChildProcessTest::theEnvironmentIsHandedOnByteForByte()
{
    const QByteArray odd = "caf\xE9 u\xCC\x88 \xC3\xBC = x";
    ChildProgram program = shell(QStringLiteral("printf %s \"$ODD\""));
    program.environment.insert("ODD", odd);
    ChildProcess child(program);
    const ChildPipes pipes = child.takePipes();
    QCOMPARE(readAll(pipes.output), odd);
    QCOMPARE(statusOf(child), 0);
}

void ChildProcessTest::theChildHandlesBrokenPipesAsUsual()
{
    ChildProcess child(shell(QStringLiteral("read line; while echo text; do :; done")));
    ChildPipes pipes = child.takePipes();
    pipes.output.close();
    pipes.input.close();
    QCOMPARE(statusOf(child), SIGPIPE);
}

void ChildProcessTest::theChildIsAloneInItsProcessGroup()
{
    ChildProcess child(shell(QStringLiteral("read line")));
    QCOMPARE(::getpgid(child.processId()), child.processId());
    child.sendSignal(SIGKILL);
    QCOMPARE(statusOf(child), SIGKILL);
}

void ChildProcessTest::theExitIsSeenWhileAGrandchildHoldsThePipes()
{
    // The grandchild is a process group of its own here, waits for the end of its input, and still holds the
    // output.
    ChildProcess child(shell(QStringLiteral("{ read line; echo late; } <&0 & exit 7")));
    ChildPipes pipes = child.takePipes();
    QCOMPARE(statusOf(child), 7);
    pipes.input.close();
    pipes.error.close();
    QCOMPARE(readAll(pipes.output), QByteArray("late\n"));
}

void ChildProcessTest::aThousandLaunchesLeaveNothingBehind()
{
    const auto launchOnce = [] {
        ChildProcess child({QStringLiteral("/usr/bin/true"), {}, QStringLiteral("/"), {}});
        return statusOf(child);
    };
    QCOMPARE(launchOnce(), 0);
    const QString descriptors = QStringLiteral("/dev/fd");
    const qsizetype before = entriesOf(descriptors);
    const auto threads = [] {
        return entriesOf(QStringLiteral("/proc/self/task"));
    };
    QTRY_VERIFY_WITH_TIMEOUT(
        threads() <= 2, patience); // those of earlier tests are gone; QtTest has one that watches for hangs
    const qsizetype threadsBefore = threads();
    for (int round = 0; round < 1000; ++round) {
        QCOMPARE(launchOnce(), 0);
    }
    QCOMPARE(entriesOf(descriptors), before);
    QCOMPARE(::waitpid(-1, nullptr, WNOHANG), pid_t{-1}); // no zombie, and no child at all
    QCOMPARE(errno, ECHILD);
    QTRY_COMPARE_WITH_TIMEOUT(threads(), threadsBefore, patience);
}

void ChildProcessTest::destroyingTheObjectLeavesTheChildRunning()
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("went-on"));
    ChildPipes pipes;
    {
        ChildProcess child(shell(QStringLiteral("read line; : > '%1'").arg(file)));
        pipes = child.takePipes();
    }
    pipes.input.close();
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(file), patience);
}

QTEST_GUILESS_MAIN(ChildProcessTest)
#include "ChildProcessTest.moc"
