#include "tests/terminal/TrainHome.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

#include <csignal>

namespace zorel::tests {

namespace {

constexpr int patience = 60'000; // milliseconds

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QJsonObject error(const char *message)
{
    return says({{text("event"), text("error")}, {text("msg"), text(message)}});
}

QJsonObject archived(const QString &path)
{
    return says({{text("event"), text("model_archived")},
                 {text("path"), path},
                 {text("step"), 200},
                 {text("loss"), 2.5},
                 {text("elapsed"), 65.9}});
}

/// Also when nobody has collected its status yet.
bool hasEnded(int processId)
{
    return ::kill(pid_t(processId), 0) != 0 ||
           fileContent(text("/proc/%1/stat").arg(processId)).contains(") Z ");
}

} // namespace

/// The real program as a child, with the scripted sidecar as its child.
class ZorelTrainTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void exitsWithTheStatusOfTheEnd_data();
    void exitsWithTheStatusOfTheEnd();
    void namesWhatCannotBeFound();
    void sendsTheStepsAndTheResumption();
    void handsTheIdentityToThisRunOnly();
    void savesWhatItIsToldTo();
    void printsTheEventsAndNothingElse();
    void writesPlainLines();
    void saysHowToPrintText();
    void stopsOnInterruption_data();
    void stopsOnInterruption();
    void killsOnTheSecondInterruption();
    void leavesAnUnreadyBackendAlone();
    void stopsWhenNobodyReads();
    void failsWhenTheOutputCannotBeWritten();
    void showsTheTracebackOfADeadBackend();
    void showsTheLogOnRequest();
    void helpsAndTellsItsVersion();

private:
    void start(QProcess &process, TrainHome &home, const QStringList &arguments);
    int finish(QProcess &process);
    int run(TrainHome &home, const QStringList &arguments);

    QByteArray m_output;
    QByteArray m_errors;
};

void ZorelTrainTest::start(QProcess &process, TrainHome &home, const QStringList &arguments)
{
    m_output.clear();
    process.setProcessEnvironment(home.environment());
    process.start(text(ZOREL_TRAIN), arguments);
    QVERIFY(process.waitForStarted(patience));
}

int ZorelTrainTest::finish(QProcess &process)
{
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    m_output = process.readAllStandardOutput();
    m_errors = process.readAllStandardError();
    return process.exitCode();
}

int ZorelTrainTest::run(TrainHome &home, const QStringList &arguments)
{
    QProcess process;
    start(process, home, arguments);
    return finish(process);
}

void ZorelTrainTest::exitsWithTheStatusOfTheEnd_data()
{
    QTest::addColumn<QJsonArray>("scenario");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("expected");
    QTest::addColumn<QString>("message");

    const QJsonObject awaitStart = does("await", text("start"));
    const QJsonObject done = says({{text("event"), text("done")}});
    const QJsonObject running = status("running", 1, 10, 3, 1);
    QTest::newRow("archived") << QJsonArray{ready(), awaitStart, running, archived(text("/m")), done}
                              << QStringList() << 0 << QString();
    QTest::newRow("archived after an error on the way")
        << QJsonArray{ready(), awaitStart,           running, error("no checkpoint"),
                      running, archived(text("/m")), done}
        << QStringList() << 0 << text("× ERROR: no checkpoint");
    QTest::newRow("refused") << QJsonArray{ready(), awaitStart, error("no texts"),
                                           status("idle", 0, 10, 0, 0)}
                             << QStringList() << 1 << text("× ERROR: no texts\nTraining failed.\n");
    QTest::newRow("failed in the middle")
        << QJsonArray{ready(), awaitStart, running, error("out of memory"), status("error", 1, 10, 0, 0)}
        << QStringList() << 1 << text("× ERROR: out of memory\nTraining failed.\n");
    QTest::newRow("done after an error, without an archive")
        << QJsonArray{ready(), awaitStart, running, error("disk full"), done} << QStringList() << 1
        << text("× ERROR: disk full\nTraining failed.\n");
    QTest::newRow("done without an archive")
        << QJsonArray{ready(), awaitStart, running, done} << QStringList() << 1
        << text("× The run ended without an archived model.\nTraining failed.\n");
    QTest::newRow("dead before it was ready") << QJsonArray{does("exit", 7)} << QStringList() << 1
                                              << text("× The Python backend ended unexpectedly (code 7).");
    QTest::newRow("killed while it trained")
        << QJsonArray{ready(), awaitStart, running, does("signal", 9)} << QStringList() << 1
        << text("× The Python backend ended unexpectedly (code 9).");
    QTest::newRow("unknown option")
        << QJsonArray() << QStringList{text("--stepz"), text("3")} << 2
        << text("zorel-train: There is no option --stepz. Did you mean --steps? See "
                "zorel-train --help.\n");
    QTest::newRow("impossible training mode")
        << QJsonArray() << QStringList{text("--family=image"), text("--capability=lora")} << 2
        << text("zorel-train: --capability lora does not go with the model type image_generation, which "
                "allows: "
                "pretrain, finetune. See zorel-train --help.\n");
}

void ZorelTrainTest::exitsWithTheStatusOfTheEnd()
{
    QFETCH(QJsonArray, scenario);
    QFETCH(QStringList, arguments);
    QFETCH(int, expected);
    QFETCH(QString, message);

    TrainHome home;
    home.play(scenario);
    QCOMPARE(run(home, arguments), expected);
    if (message.isEmpty()) {
        QCOMPARE(m_errors, QByteArray());
    } else {
        QVERIFY2(m_errors.contains(message.toUtf8()), m_errors.constData());
    }
}

void ZorelTrainTest::namesWhatCannotBeFound()
{
    TrainHome withoutScripts;
    QFile::remove(withoutScripts.scripts() + text("/src/app_backend.py"));
    // The checkout has scripts of its own; only an interpreter can then be missing.
    writeFile(withoutScripts.interpreter(), "#!/bin/sh\nexit 1\n");
    withoutScripts.setEnvironment(text("ZOREL_SCRIPTS_ROOT"), text("/nowhere"));
    QCOMPARE(run(withoutScripts, {}), 3);
    QVERIFY2(m_errors.startsWith("× failed to locate Python sidecar: "), m_errors.constData());
    QVERIFY2(m_errors.contains("./run"), m_errors.constData());
    QCOMPARE(m_errors.count("failed to locate"), 1);
}

void ZorelTrainTest::sendsTheStepsAndTheResumption()
{
    TrainHome home;
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), ready(), does("await", text("start")),
               status("running", 1, 10, 3, 1), archived(text("/m"))});
    QCOMPARE(run(home, {text("--steps"), text("123"), text("--resume")}), 0);
    const QList<QByteArray> lines = fileContent(commands).trimmed().split('\n');
    QCOMPARE(lines.size(), 7);
    QVERIFY(lines[0].contains("set_paths"));
    QVERIFY(lines[1].contains("set_model_identity"));
    QVERIFY(lines[2].contains("set_training_profile"));
    QCOMPARE(lines[3], QByteArray(R"({"cmd":"set_max_steps","n":123})"));
    QVERIFY(lines[4].contains(R"("max_steps":123)"));
    QVERIFY(lines[4].contains(R"("resume":true)"));
    QCOMPARE(lines[5], QByteArray(R"({"cmd":"stop"})"));
    QCOMPARE(lines[6], QByteArray(R"({"cmd":"quit"})"));
}

void ZorelTrainTest::handsTheIdentityToThisRunOnly()
{
    TrainHome home;
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), ready(), does("await", text("start")),
               status("running", 1, 10, 3, 1), archived(text("/m"))});
    QCOMPARE(run(home, {text("--model-name"), text("Poet"), text("--family"), text("image"),
                        text("--finished-models"), home.pathOf(text("out"))}),
             0);
    QVERIFY(fileContent(commands).contains(R"("name":"Poet")"));
    QVERIFY(fileContent(commands).contains(R"("model_family":"image_generation")"));
    QVERIFY(fileContent(commands).contains(home.pathOf(text("out")).toUtf8()));
    QVERIFY(!QDir(home.pathOf(text(".config"))).exists());

    QFile::remove(commands);
    QCOMPARE(run(home, {}), 0);
    QVERIFY(fileContent(commands).contains(R"("name":"MyModel")"));
}

void ZorelTrainTest::savesWhatItIsToldTo()
{
    TrainHome home;
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), ready(), does("await", text("start")),
               status("running", 1, 10, 3, 1), archived(text("/m"))});
    QCOMPARE(run(home, {text("--author"), text("Ada"), text("--save")}), 0);
    QCOMPARE(m_errors, QByteArray());
    QFile::remove(commands);
    QCOMPARE(run(home, {}), 0);
    QVERIFY(fileContent(commands).contains(R"("author":"Ada")"));

    // Wrong usage saves nothing of it.
    QCOMPARE(run(home, {text("--author"), text("Bob"), text("--family=multimodal"), text("--capability=lora"),
                        text("--save")}),
             2);
    QFile::remove(commands);
    QCOMPARE(run(home, {}), 0);
    QVERIFY(fileContent(commands).contains(R"("author":"Ada")"));
}

void ZorelTrainTest::printsTheEventsAndNothingElse()
{
    TrainHome home;
    const QJsonObject first = ready();
    const QJsonObject second = status("running", 1, 10, 3, 1);
    const QJsonObject third = archived(text("/m"));
    const QJsonObject fourth = says({{text("event"), text("done")}});
    home.play({first, does("await", text("start")), does("raw", text("loading weights\n  \n")), second, third,
               does("stderr", text("a warning")), fourth});
    QCOMPARE(run(home, {text("--json"), text("--log")}), 0);
    const QList<QByteArray> lines = m_output.trimmed().split('\n');
    QCOMPARE(lines.size(), 4);
    const QList<QJsonObject> expected{first, second, third, fourth};
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QCOMPARE(QJsonDocument::fromJson(lines[i]).object(), expected[i].value(text("emit")).toObject());
    }
    QVERIFY(m_errors.contains("× bad event from backend: loading weights\n"));
    QVERIFY(m_errors.contains("[py stderr] a warning\n"));
    QVERIFY(m_errors.contains("✓ Model archived"));
}

void ZorelTrainTest::writesPlainLines()
{
    TrainHome home;
    QJsonObject preparing = status("preparing", 0, 200, 0, 0).value(text("emit")).toObject();
    preparing[text("prep_progress")] = 0.34;
    preparing[text("prep_elapsed_s")] = 12.5;
    preparing[text("prep_eta_s")] = 24;
    home.play({ready(), does("await", text("start")), status("starting", 0, 200, 0, 0), says(preparing),
               status("running", 100, 200, 3.25, 60), status("running", 101, 200, 3.2, 60.5),
               status("running", 120, 200, 3, 70), archived(text("/models/one"))});
    QCOMPARE(run(home, {}), 0);
    QByteArray expected =
        "Text Language Model: Pretrain from scratch\n"
        "  training data    HOME/Documents/Zorel/Training Data\n"
        "  finished models  HOME/Documents/Zorel/Finished models\n"
        "Ctrl-C stops and saves a checkpoint.\n"
        "Starting Python backend…\n"
        "Warming up\n"
        "Preparing data: 34%, Working on your corpus…, 12s elapsed, 24s left\n"
        "Training: step 100 of 200 (50%), loss 3.2500, 1234 tokens/sec, 1m00s elapsed\n"
        "Training: step 120 of 200 (60%), loss 3.0000, 1234 tokens/sec, 1m10s elapsed, 40s left\n"
        "Finishing\n"
        "✓ Model archived after 200 steps in 1m05s, final loss 2.5000\n"
        "  /models/one\n";
    expected.replace("HOME", home.pathOf(QString()).toUtf8());
    QCOMPARE(QString::fromUtf8(m_output), QString::fromUtf8(expected));

    home.setEnvironment(text("LC_ALL"), text("C"));
    QCOMPARE(run(home, {}), 0);
    QVERIFY(m_output.contains("Starting Python backend...\n"));
    QVERIFY(m_output.contains("* Model archived"));
    QCOMPARE(m_errors, QByteArray());
}

void ZorelTrainTest::saysHowToPrintText()
{
    TrainHome home;
    const QString generate = home.scripts() + text("/generate");
    writeFile(generate, "#!/bin/sh\n");
    QFile::setPermissions(generate, QFile::ReadOwner | QFile::ExeOwner);
    QCOMPARE(run(home, {text("--steps"), text("5")}), 0);
    const QStringList runs = QDir(home.finishedModels()).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    QCOMPARE(runs.size(), 1);
    const QString command = text("To print text from it:\n  %1 '%2/%3' --prompt")
                                .arg(generate, home.finishedModels(), runs.first());
    QVERIFY2(m_output.contains(command.toUtf8()), m_output.constData());
}

void ZorelTrainTest::stopsOnInterruption_data()
{
    QTest::addColumn<int>("signal");
    QTest::newRow("Ctrl-C") << SIGINT;
    QTest::newRow("terminate") << SIGTERM;
    QTest::newRow("hang-up") << SIGHUP;
}

void ZorelTrainTest::stopsOnInterruption()
{
    QFETCH(int, signal);
    TrainHome home;
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), ready(), does("await", text("start")),
               status("running", 7, 10, 3, 1), does("await", text("stop")), status("stopping", 7, 10, 3, 1),
               status("idle", 7, 10, 3, 1)});
    QProcess process;
    start(process, home, {});
    QTRY_VERIFY_WITH_TIMEOUT((m_output += process.readAllStandardOutput()).contains("step 7"), patience);
    ::kill(pid_t(process.processId()), signal);
    QCOMPARE(finish(process), 0);
    QCOMPARE(m_output.contains("Press Ctrl-C again"), signal != SIGHUP);
    QVERIFY2(m_output.contains("Stopped at step 7 of 10."), m_output.constData());
    QVERIFY(fileContent(commands).endsWith("{\"cmd\":\"stop\"}\n{\"cmd\":\"quit\"}\n"));
    QCOMPARE(m_errors, QByteArray());
}

void ZorelTrainTest::killsOnTheSecondInterruption()
{
    TrainHome home;
    // Waits for a signal, and takes no notice of anything else.
    const QString stopping = home.pathOf(text("stopping"));
    home.play({ready(), does("await", text("start")), status("running", 7, 10, 3, 1),
               does("await", text("stop")), does("report_to", stopping), does("signal", SIGCONT)});
    QProcess process;
    start(process, home, {});
    QTRY_VERIFY_WITH_TIMEOUT((m_output += process.readAllStandardOutput()).contains("step 7"), patience);
    ::kill(pid_t(process.processId()), SIGINT);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(stopping), patience);
    ::kill(pid_t(process.processId()), SIGINT);
    QCOMPARE(finish(process), 0);
    QVERIFY2(m_output.contains("Stopped at once"), m_output.constData());
    const int sidecar =
        QJsonDocument::fromJson(fileContent(stopping)).object().value(text("process")).toInt();
    QVERIFY(sidecar > 0);
    const bool wasKilled = QTest::qWaitFor([sidecar] { return hasEnded(sidecar); }, patience);
    ::kill(pid_t(sidecar), SIGKILL);
    QVERIFY(wasKilled);
}

void ZorelTrainTest::leavesAnUnreadyBackendAlone()
{
    TrainHome home;
    const QString started = home.pathOf(text("started"));
    const QString ended = home.pathOf(text("ended"));
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), does("touch", started), does("wait_for_eof", true),
               does("touch", ended)});
    QProcess process;
    start(process, home, {});
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(started), patience);
    ::kill(pid_t(process.processId()), SIGINT);
    QCOMPARE(finish(process), 0);
    QVERIFY(m_output.contains("Stopped before the first step."));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(ended), patience);
    QVERIFY(!QFile::exists(commands));
}

void ZorelTrainTest::stopsWhenNobodyReads()
{
    TrainHome home;
    const QString commands = home.pathOf(text("commands"));
    home.play({does("echo_commands_to", commands), ready(), does("await", text("start")),
               does("wait_for_file", home.pathOf(text("closed"))), status("running", 7, 10, 3, 1)});
    // The reader goes away after the first line and only then lets the run come to its next one.
    QProcess shell;
    shell.setProcessEnvironment(home.environment());
    shell.start(text("/bin/sh"), {text("-c"),
                                  text("(\"$0\" --json; echo \"status $?\" >&2) | "
                                       "{ read line; exec 0<&-; : > \"$1\"; }"),
                                  text(ZOREL_TRAIN), home.pathOf(text("closed"))});
    QCOMPARE(finish(shell), 0);
    QVERIFY2(m_errors.contains("status 0\n"), m_errors.constData());
    QVERIFY(m_errors.contains("The output cannot be written any more; stopping.\n"));
    QVERIFY(fileContent(commands).endsWith("{\"cmd\":\"stop\"}\n{\"cmd\":\"quit\"}\n"));
}

void ZorelTrainTest::failsWhenTheOutputCannotBeWritten()
{
    TrainHome home;
    home.play({ready(), does("await", text("start")), status("running", 7, 10, 3, 1)});
    QProcess shell;
    shell.setProcessEnvironment(home.environment());
    shell.start(text("/bin/sh"), {text("-c"), text("exec \"$0\" --json 1</dev/null"), text(ZOREL_TRAIN)});
    QCOMPARE(finish(shell), 1);
    QVERIFY(m_errors.contains("The output cannot be written any more; stopping.\n"));
}

void ZorelTrainTest::showsTheTracebackOfADeadBackend()
{
    TrainHome home;
    home.play({does("stderr", text("Traceback (most recent call last):")),
               does("stderr", text("\x1b[2JImportError")), does("exit", 1)});
    QCOMPARE(run(home, {}), 1);
    QVERIFY2(
        m_errors.endsWith("Its last output was:\n  Traceback (most recent call last):\n   [2JImportError\n"
                          "Training failed.\n"),
        m_errors.constData());
}

void ZorelTrainTest::showsTheLogOnRequest()
{
    TrainHome home;
    home.play({ready(), does("await", text("start")),
               says({{text("event"), text("log")}, {text("msg"), text("12 documents")}}),
               archived(text("/m"))});
    QCOMPARE(run(home, {text("--log")}), 0);
    QVERIFY(m_output.contains("\n12 documents\n"));
    QVERIFY(m_output.contains("\n✓ archived model → /m\n"));
    QCOMPARE(run(home, {}), 0);
    QVERIFY(!m_output.contains("12 documents"));
}

void ZorelTrainTest::helpsAndTellsItsVersion()
{
    TrainHome home;
    QCOMPARE(run(home, {text("--nonsense"), text("-h")}), 0);
    QVERIFY(m_output.startsWith("Usage: zorel-train [OPTIONS]\n"));
    for (const QString &line : QString::fromUtf8(m_output).split(u'\n')) {
        QVERIFY2(line.size() <= 80, qPrintable(line));
    }
    QCOMPARE(run(home, {text("--version")}), 0);
    QVERIFY(m_output.startsWith("zorel-train "));
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ZorelTrainTest)
#include "ZorelTrainTest.moc"
