#include "updater/ToolRunner.h"
#include "platform/ChildProcess.h"
#include "tests/updater/Files.h"
#include "tests/updater/Outcome.h"
#include "updater/Cancellation.h"

#include <csignal>
#include <thread>

using namespace zorel::tests;
using namespace zorel::updater;
using namespace std::chrono_literals;

namespace {

/// Runs a line of shell as a tool.
class Shell
{
public:
    Cancellation cancellation;
    std::chrono::milliseconds limit = 60s;
    std::function<void()> watch;

    ToolResult run(const QString &script) const
    {
        return runner().run(QStringLiteral("/bin/sh"), arguments(script));
    }
    void unpackWith(const QString &script) const
    {
        runner().unpackWith(QStringLiteral("/bin/sh"), arguments(script));
    }

private:
    ToolRunner runner() const
    {
        ToolRunner runner({{"PATH", "/usr/bin:/bin"}, {"GREETING", "hello"}}, limit, cancellation);
        runner.setWatch(watch);
        return runner;
    }
    static QStringList arguments(const QString &script) { return {QStringLiteral("-c"), script}; }
};

bool isAlive(const QString &processIdFile)
{
    const pid_t processId = contentsOf(processIdFile).trimmed().toInt();
    return processId > 0 && ::kill(processId, 0) == 0;
}

/// What a tool that waits for ever, and heeds no request to end, tells of itself and of a child of its own.
QString waitingScript(const Folder &folder)
{
    return QStringLiteral(
               "trap '' TERM; sleep 1000 & echo $! > '%1/child'; echo $$ > '%1/tool'; echo started; wait")
        .arg(folder.path());
}

bool bothAreGone(const Folder &folder)
{
    return QTest::qWaitFor([&] { return !isAlive(folder / "tool") && !isAlive(folder / "child"); }, 30'000);
}

} // namespace

class ToolRunnerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bothOutputsAreCaptured();
    void theEnvironmentIsTheGivenOne();
    void theInputIsAtItsEnd();
    void exitCodesAndSignalsAreReported_data();
    void exitCodesAndSignalsAreReported();
    void aFailingToolTellsItsOutput();
    void aMissingToolIsNamed();
    void aFloodOfOutputIsCut();
    void whatAToolStartsMayHoldItsPipes();
    void cancellingKillsTheToolAndItsChildren();
    void aCancelledRunnerStartsNothing();
    void aHangingToolIsKilled();
    void theWatchIsCalledAndMayStopTheTool();
};

void ToolRunnerTest::bothOutputsAreCaptured()
{
    const ToolResult result = Shell().run(QStringLiteral("echo '  one'; echo two >&2"));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.output, QStringLiteral("one\ntwo"));
}

void ToolRunnerTest::theEnvironmentIsTheGivenOne()
{
    QCOMPARE(Shell().run(QStringLiteral("echo $GREETING $HOME")).output, QStringLiteral("hello"));
}

void ToolRunnerTest::theInputIsAtItsEnd()
{
    QCOMPARE(Shell().run(QStringLiteral("cat; echo read")).output, QStringLiteral("read"));
}

void ToolRunnerTest::exitCodesAndSignalsAreReported_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("0") << QStringLiteral("exit 0") << 0;
    QTest::newRow("1") << QStringLiteral("exit 1") << 1;
    QTest::newRow("255") << QStringLiteral("exit 255") << 255;
    QTest::newRow("SIGKILL") << QStringLiteral("kill -9 $$") << 9;
}

void ToolRunnerTest::exitCodesAndSignalsAreReported()
{
    QFETCH(QString, script);
    QFETCH(int, status);
    QCOMPARE(Shell().run(script).status, status);
}

void ToolRunnerTest::aFailingToolTellsItsOutput()
{
    QCOMPARE(
        errorOf([] { Shell().unpackWith(QStringLiteral("echo; echo '  no such archive  ' >&2; exit 3")); }),
        extractionFailed(QStringLiteral("sh exited with code 3: no such archive")));
    QCOMPARE(errorOf([] { Shell().unpackWith(QStringLiteral("exit 1")); }),
             extractionFailed(QStringLiteral("sh exited with code 1: ")));
    // What an output holds is text, also where it looks like a place marker.
    QCOMPARE(errorOf([] { Shell().unpackWith(QStringLiteral("echo %1 %2; exit 1")); }),
             extractionFailed(QStringLiteral("sh exited with code 1: %1 %2")));
    QCOMPARE(errorOf([] { Shell().unpackWith(QStringLiteral("echo fine")); }), std::nullopt);
}

void ToolRunnerTest::aMissingToolIsNamed()
{
    const Folder folder;
    Cancellation cancellation;
    const ToolRunner runner({}, 60s, cancellation);
    const auto error = errorOf([&] { runner.unpackWith(folder / "ditto", {}); });
    QCOMPARE(error, extractionFailed((folder / "ditto") + QStringLiteral(": No such file or directory")));
    QVERIFY_THROWS_EXCEPTION(zorel::platform::LaunchError, runner.run(folder / "ditto", {}));
}

void ToolRunnerTest::aFloodOfOutputIsCut()
{
    const auto error = errorOf([] {
        Shell().unpackWith(QStringLiteral("head -c 10000000 /dev/zero | tr '\\0' x; head -c 10000000 "
                                          "/dev/zero | tr '\\0' y >&2; echo; echo why; exit 1"));
    });
    QVERIFY(error);
    const QString text = error->message();
    QVERIFY2(text.size() < 5'000, qPrintable(QString::number(text.size())));
    QVERIFY(text.startsWith(QStringLiteral("Couldn't unpack the update: sh exited with code 1: …")));
    QVERIFY(text.contains(QStringLiteral("why\n…")));
    QVERIFY(text.endsWith(QStringLiteral("yyyy")));
}

void ToolRunnerTest::whatAToolStartsMayHoldItsPipes()
{
    const Folder folder;
    const ToolResult result =
        Shell().run(QStringLiteral("sleep 1000 & echo $! > '%1/child'; echo done").arg(folder.path()));
    QCOMPARE(result.output, QStringLiteral("done"));
    QVERIFY(isAlive(folder / "child"));
    ::kill(contentsOf(folder / "child").trimmed().toInt(), SIGKILL);
}

void ToolRunnerTest::cancellingKillsTheToolAndItsChildren()
{
    const Folder folder;
    Shell shell;
    std::thread canceller([&] {
        while (!QFile::exists(folder / "tool")) {
            std::this_thread::yield();
        }
        shell.cancellation.cancel();
    });
    QCOMPARE(errorOf([&] { shell.unpackWith(waitingScript(folder)); }), cancelled());
    canceller.join();
    QVERIFY(bothAreGone(folder));
}

void ToolRunnerTest::aCancelledRunnerStartsNothing()
{
    const Folder folder;
    Shell shell;
    shell.cancellation.cancel();
    QCOMPARE(errorOf([&] { shell.run(QStringLiteral("touch '%1/started'").arg(folder.path())); }),
             cancelled());
    QVERIFY(!QFile::exists(folder / "started"));
}

void ToolRunnerTest::aHangingToolIsKilled()
{
    const Folder folder;
    Shell shell;
    shell.limit = 500ms;
    QCOMPARE(errorOf([&] { shell.unpackWith(waitingScript(folder)); }),
             extractionFailed(QStringLiteral("sh did not finish within 0.5 seconds: started")));
    QVERIFY(bothAreGone(folder));
}

void ToolRunnerTest::theWatchIsCalledAndMayStopTheTool()
{
    const Folder folder;
    Shell shell;
    int looks = 0;
    shell.watch = [&looks] {
        if (++looks == 2) {
            throw UpdateError(UpdateError::AppNotFoundInArtifact{});
        }
    };
    QCOMPARE(errorOf([&] { shell.unpackWith(waitingScript(folder)); }),
             std::optional(UpdateError(UpdateError::AppNotFoundInArtifact{})));
    QVERIFY(bothAreGone(folder));
}

QTEST_GUILESS_MAIN(ToolRunnerTest)
#include "ToolRunnerTest.moc"
