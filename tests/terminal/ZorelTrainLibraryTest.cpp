#include "tests/support/RunFolders.h"
#include "tests/terminal/TrainHome.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTest>

namespace zorel::tests {

namespace {

constexpr int patience = 60'000; // milliseconds

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

QByteArray manifest(const char *name, const char *date, int step)
{
    return QStringLiteral(
               R"({"model_identity": {"name": "%1"}, "archived_at": "%2", "step": %3, "final_loss": 2.5})")
        .arg(text(name), text(date))
        .arg(step)
        .toUtf8();
}

} // namespace

/// The real program, looking into a library.
class ZorelTrainLibraryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void listsTheNewestFirst();
    void listsWhatIsSearchedFor();
    void listsTheFolderOfTheSettings();
    void listsOneObjectALine();
    void anEmptyLibraryIsNoError();
    void showsARunByEveryName_data();
    void showsARunByEveryName();
    void showsARunOfAnotherLibrary();
    void showsARunAsJson();
    void comparesTwoRuns();
    void comparesAsJson();
    void complainsOfWhatIsNotThere_data();
    void complainsOfWhatIsNotThere();
    void anOutputThatCannotBeWrittenIsAFailure();
    void needsNoTrainingScripts();

private:
    int run(const QStringList &arguments);
    int runInLibrary(QStringList arguments)
    {
        return run(arguments << text("--finished-models") << m_folders->path());
    }
    QStringList outputLines() const { return QString::fromUtf8(m_output).split(u'\n', Qt::SkipEmptyParts); }
    QJsonObject outputObject() const { return QJsonDocument::fromJson(m_output).object(); }

    std::unique_ptr<TrainHome> m_home;
    std::unique_ptr<RunFolders> m_folders;
    QByteArray m_output;
    QByteArray m_errors;
};

void ZorelTrainLibraryTest::init()
{
    m_home = std::make_unique<TrainHome>();
    m_home->setEnvironment(text("TZ"), text("UTC"));
    m_folders = std::make_unique<RunFolders>();
    m_folders->addRun(text("2026-06-01_10-00-00"), manifest("tiny-lm", "2026-06-01T10:00:00Z", 100));
    m_folders->addRun(text("2026-07-01_10-00-00"), manifest("tiny-lm", "2026-07-01T10:00:00Z", 200));
    m_folders->addRun(text("2026-06-15_10-00-00"), manifest("Poet", "2026-06-15T10:00:00Z", 300));
    m_folders->write(text("2026-06-01_10-00-00/loss_curve.jsonl"), curveText(100));
    m_folders->write(text("2026-07-01_10-00-00/loss_curve.jsonl"), curveText(200));
    m_folders->addRun(text("damaged"), "{");
}

int ZorelTrainLibraryTest::run(const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_home->environment());
    process.start(text(ZOREL_TRAIN), arguments);
    if (!process.waitForFinished(patience) || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    m_output = process.readAllStandardOutput();
    m_errors = process.readAllStandardError();
    return process.exitCode();
}

void ZorelTrainLibraryTest::listsTheNewestFirst()
{
    QCOMPARE(runInLibrary({text("list")}), 0);
    QCOMPARE(m_errors, QByteArray());
    const QStringList lines = outputLines();
    QCOMPARE(lines.size(), 4);
    QVERIFY(lines[0].startsWith(text("FOLDER ")));
    QVERIFY(lines[1].startsWith(text("2026-07-01_10-00-00  tiny-lm  0.0.0    2026-07-01 10:00  200 / 0")));
    QVERIFY(lines[2].startsWith(text("2026-06-15_10-00-00  Poet ")));
    QVERIFY(lines[3].startsWith(text("2026-06-01_10-00-00  tiny-lm ")));
}

void ZorelTrainLibraryTest::listsWhatIsSearchedFor()
{
    QCOMPARE(runInLibrary({text("list"), text("TINY")}), 0);
    QCOMPARE(outputLines().size(), 3);
    QCOMPARE(runInLibrary({text("list"), text("nowhere")}), 0);
    QCOMPARE(m_output, QByteArray());
    QCOMPARE(m_errors, QByteArray("No run has “nowhere” in its name, version or folder.\n"));
}

void ZorelTrainLibraryTest::listsTheFolderOfTheSettings()
{
    writeFile(m_home->finishedModels() + text("/mine/manifest.json"), "{}");
    QCOMPARE(run({text("list")}), 0);
    QCOMPARE(outputLines().size(), 2);
    QVERIFY(outputLines().value(1).startsWith(text("mine ")));
}

void ZorelTrainLibraryTest::listsOneObjectALine()
{
    QCOMPARE(runInLibrary({text("list"), text("--json")}), 0);
    QStringList folders;
    for (const QString &line : outputLines()) {
        folders << QJsonDocument::fromJson(line.toUtf8())[text("folder_name")].toString();
    }
    QCOMPARE(folders.join(u' '), text("2026-07-01_10-00-00 2026-06-15_10-00-00 2026-06-01_10-00-00"));
    QCOMPARE(runInLibrary({text("list"), text("nowhere"), text("--json")}), 0);
    QCOMPARE(m_output + m_errors, QByteArray());
}

void ZorelTrainLibraryTest::anEmptyLibraryIsNoError()
{
    QCOMPARE(run({text("list")}), 0);
    QCOMPARE(m_output, QByteArray());
    QVERIFY(m_errors.startsWith("No trained models yet."));
}

void ZorelTrainLibraryTest::showsARunByEveryName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("folder");
    QTest::newRow("folder") << text("2026-06-15_10-00-00") << text("2026-06-15_10-00-00");
    QTest::newRow("beginning") << text("2026-07") << text("2026-07-01_10-00-00");
    QTest::newRow("latest") << text("latest") << text("2026-07-01_10-00-00");
    QTest::newRow("path") << text("%1/2026-06-15_10-00-00") << text("2026-06-15_10-00-00");
    QTest::newRow("path with a slash") << text("%1//2026-06-15_10-00-00/") << text("2026-06-15_10-00-00");
}

void ZorelTrainLibraryTest::showsARunByEveryName()
{
    QFETCH(QString, name);
    QFETCH(QString, folder);
    name.replace(text("%1"), m_folders->path());
    QCOMPARE(runInLibrary({text("show"), name}), 0);
    QVERIFY(m_output.contains("\n  Folder           " + m_folders->pathOf(folder).toUtf8() + '\n'));
    QCOMPARE(m_errors, QByteArray());
}

void ZorelTrainLibraryTest::showsARunOfAnotherLibrary()
{
    QCOMPARE(run({text("show"), m_folders->pathOf(text("2026-06-15_10-00-00"))}), 0);
    QVERIFY(m_output.startsWith("Poet v0.0.0\n"));
}

void ZorelTrainLibraryTest::showsARunAsJson()
{
    QCOMPARE(runInLibrary({text("show"), text("2026-06-01"), text("--json")}), 0);
    QCOMPARE(outputLines().size(), 1);
    QCOMPARE(outputObject()[text("name")].toString(), text("tiny-lm"));
    QCOMPARE(outputObject()[text("loss_curve")][text("last_step")].toInt(), 100);
    QVERIFY(outputObject()[text("neuron_snapshot")].isNull());
}

void ZorelTrainLibraryTest::comparesTwoRuns()
{
    QCOMPARE(runInLibrary({text("compare"), text("2026-06-01"), text("latest")}), 0);
    QVERIFY(m_output.contains("\n  Baseline         tiny-lm v0.0.0, 2026-06-01_10-00-00\n"));
    QVERIFY(m_output.contains("\n  Candidate        tiny-lm v0.0.0, 2026-07-01_10-00-00\n"));
    QVERIFY(m_output.contains("\n  Steps            100 → 200 (+100)\n"));
    QVERIFY(m_output.contains("Both curves have data from step 1 to step 100.\n"));
    QVERIFY(!m_output.contains("exploratory"));
    QCOMPARE(runInLibrary({text("compare"), text("2026-06-01"), text("2026-06-15")}), 0);
    QVERIFY(m_output.contains("exploratory"));
}

void ZorelTrainLibraryTest::comparesAsJson()
{
    QCOMPARE(runInLibrary({text("compare"), text("latest"), text("2026-06-01"), text("--json")}), 0);
    QCOMPARE(outputLines().size(), 1);
    QCOMPARE(outputObject()[text("step_change")].toInt(), -100);
    QCOMPARE(outputObject()[text("same_model")].toBool(), true);
}

void ZorelTrainLibraryTest::complainsOfWhatIsNotThere_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *arguments, int status, const char *message) {
        QTest::newRow(arguments) << text(arguments).split(u' ') << status << text(message);
    };
    row("show nowhere --finished-models %1", 1,
        "zorel-train: There is no run “nowhere” in %1. See zorel-train list.\n");
    row("show 2026-06 --finished-models %1", 1,
        "zorel-train: “2026-06” may be any of 2 runs: 2026-06-15_10-00-00, 2026-06-01_10-00-00. See "
        "zorel-train list.\n");
    row("show damaged --finished-models %1", 1,
        "zorel-train: There is no run “damaged” in %1. See zorel-train list.\n");
    row("show %1/damaged", 1,
        "zorel-train: There is no run in the folder %1/damaged. See zorel-train list.\n");
    row("compare nowhere 2026-07 --finished-models %1", 1,
        "zorel-train: There is no run “nowhere” in %1. See zorel-train list.\n");
    row("list --finished-models %1/nowhere", 2,
        "zorel-train: --finished-models: there is no folder %1/nowhere. See zorel-train --help.\n");
    row("list --steps 3", 2, "zorel-train: --steps does not go with “list”. See zorel-train --help.\n");
}

void ZorelTrainLibraryTest::complainsOfWhatIsNotThere()
{
    QFETCH(QStringList, arguments);
    QFETCH(int, status);
    QFETCH(QString, message);
    arguments.replaceInStrings(text("%1"), m_folders->path());
    QCOMPARE(run(arguments), status);
    QCOMPARE(QString::fromUtf8(m_errors), message.replace(text("%1"), m_folders->path()));
    QCOMPARE(m_output, QByteArray());
}

void ZorelTrainLibraryTest::anOutputThatCannotBeWrittenIsAFailure()
{
    QProcess shell;
    shell.setProcessEnvironment(m_home->environment());
    shell.start(text("/bin/sh"),
                {text("-c"), text("exec \"$0\" list --json --finished-models \"$1\" 1</dev/null"),
                 text(ZOREL_TRAIN), m_folders->path()});
    QVERIFY(shell.waitForFinished(patience));
    QCOMPARE(shell.exitCode(), 1);
    QCOMPARE(shell.readAllStandardError(),
             QByteArray("zorel-train: The output cannot be written: Bad file descriptor.\n"));
}

void ZorelTrainLibraryTest::needsNoTrainingScripts()
{
    m_home->setEnvironment(text("ZOREL_SCRIPTS_ROOT"), text("/nowhere"));
    QCOMPARE(runInLibrary({text("show"), text("latest")}), 0);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ZorelTrainLibraryTest)
#include "ZorelTrainLibraryTest.moc"
