#include "terminal/LibraryReport.h"
#include "backend/protocol/SnapshotDecoder.h"
#include "tests/support/RunFolders.h"

#include <QTest>

#include <cstdlib>
#include <ctime>

namespace zorel::tests {

using library::ArchivedModelRecord;
using library::ComparisonData;
using library::ModelRunComparison;
using namespace terminal;

namespace {

ArchivedModelRecord tinyRun()
{
    ArchivedModelRecord run = completeRecord(QStringLiteral("/library/2026-06-01_21-44-12"));
    run.trainingCapability = QStringLiteral("distil");
    run.hasLossCurve = run.hasNeuronSnapshot = false;
    return run;
}

QString lines(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts) {
        list << QString::fromUtf8(text);
    }
    return list.join(u'\n');
}

std::vector<backend::protocol::LossPoint> curve(std::int64_t last)
{
    std::vector<backend::protocol::LossPoint> points;
    for (std::int64_t step = 1; step <= last; ++step) {
        points.emplace_back(step, step == 3 ? 1.5 : 10.0 - static_cast<double>(step) / 1000);
    }
    return points;
}

backend::protocol::NeuronSnapshotPayload snapshot(int layers, int neurons, double base)
{
    return backend::protocol::decodeSnapshot(snapshotText(layers, neurons, base).toStdString()).value();
}

} // namespace

class LibraryReportTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void alignsColumnsByWidth();
    void keepsARowOnOneLine();
    void reportsEveryFigureOfARun();
    void leavesOutWhatARunLacks();
    void reportsAComparison();
    void warnsOfWhatCannotBeCompared();
    void saysThatThereIsNothing();
};

void LibraryReportTest::initTestCase()
{
    ::setenv("TZ", "UTC", 1);
    ::tzset();
}

void LibraryReportTest::alignsColumnsByWidth()
{
    ArchivedModelRecord other = tinyRun();
    other.folderName = QStringLiteral("r");
    other.name = QStringLiteral("詩人");
    other.step = 1'000'000;
    other.valLoss.reset();
    other.archivedAt.reset();
    const ArchivedModelRecord tiny = tinyRun();
    QCOMPARE(
        runTable({&tiny, &other}),
        lines({"FOLDER               NAME     VERSION  ARCHIVED          STEPS              LOSS    VAL LOSS",
               "2026-06-01_21-44-12  tiny-lm  1.2.3    2026-06-01 21:44  1,000 / 2,000      2.5000  2.7500",
               "r                    詩人     1.2.3    —                 1,000,000 / 2,000  2.5000  —"}));
}

void LibraryReportTest::keepsARowOnOneLine()
{
    ArchivedModelRecord run = tinyRun();
    run.name = QStringLiteral("two\nlines\x1b[31m");
    run.author = QStringLiteral("A\nB");
    QCOMPARE(runTable({&run}).count(u'\n'), 1);
    QVERIFY(!runTable({&run}).contains(u'\x1b'));
    QCOMPARE(runReport(run, std::nullopt, std::nullopt).section(u'\n', 0, 0),
             QStringLiteral("two lines [31m v1.2.3 by A B"));
}

void LibraryReportTest::reportsEveryFigureOfARun()
{
    QCOMPARE(
        runReport(tinyRun(), library::summary(curve(1000)), snapshot(4, 32, 0)),
        lines({"tiny-lm v1.2.3 by ada@example.org", "  Folder           /library/2026-06-01_21-44-12",
               "  Model type       Text Language Model", "  Training mode    distil",
               "  Archived         2026-06-01 21:44", "  Steps            1,000 / 2,000",
               "  Final loss       2.5000", "  Val loss         2.7500", "  Elapsed          1m01s",
               "  Throughput       1234 tok/s",
               "  Loss curve       1,000 points, step 1 to 1,000: 9.9990 → 9.0000, lowest 1.5000 at step 3",
               "  Neuron snapshot  step 1,000, 4 blocks: 42 highly active, 43 moderate, 43 inactive"}));
}

void LibraryReportTest::leavesOutWhatARunLacks()
{
    ArchivedModelRecord run = tinyRun();
    run.author = QStringLiteral("  ");
    run.valLoss.reset();
    const QString report = runReport(run, std::nullopt, std::nullopt);
    QVERIFY(report.startsWith(QStringLiteral("tiny-lm v1.2.3\n")));
    QVERIFY(!report.contains(QStringLiteral("Val loss")));
    QVERIFY(report.endsWith(QStringLiteral("  Loss curve       none\n  Neuron snapshot  none")));
}

void LibraryReportTest::reportsAComparison()
{
    ModelRunComparison comparison{tinyRun(), tinyRun()};
    comparison.candidate.folderName = QStringLiteral("second");
    comparison.candidate.version = QStringLiteral("1.3.0");
    comparison.candidate.step = 800;
    comparison.candidate.finalLoss = 2.25;
    comparison.candidate.elapsedS = 1.5;
    ComparisonData data;
    data.baselineNeurons = snapshot(2, 4, 0);
    data.candidateNeurons = snapshot(1, 4, 0.5);
    data.baselineLoss = curve(1000);
    data.candidateLoss = curve(1);
    QCOMPARE(
        comparisonReport(comparison, data),
        lines({"tiny-lm v1.2.3 → tiny-lm v1.3.0", "  Baseline         tiny-lm v1.2.3, 2026-06-01_21-44-12",
               "  Candidate        tiny-lm v1.3.0, second", "  Loss change      -0.2500",
               "  Steps            1,000 → 800 (-200)", "  Training time    1m0s",
               "  Baseline curve   1,000 points, step 1 to 1,000: 9.9990 → 9.0000, lowest 1.5000 at step 3",
               "  Candidate curve  1 point, step 1 to 1: 9.9990 → 9.9990, lowest 9.9990 at step 1",
               "                   Both curves have data at step 1 only.",
               "  Neuron pathways  4 more active, 0 less active, 4 similar",
               "                   The two models differ in shape: the baseline has 2 blocks of 4 channel "
               "groups "
               "(64 channels), the candidate 1 block of 4 channel groups (64 channels). Cells compare groups "
               "of "
               "the same number; those without a counterpart are grey."}));
}

void LibraryReportTest::warnsOfWhatCannotBeCompared()
{
    ModelRunComparison comparison{tinyRun(), tinyRun()};
    comparison.candidate.name = QStringLiteral("other");
    const QString report = comparisonReport(comparison, ComparisonData());
    QVERIFY(report.contains(
        QStringLiteral("\n  Note             These runs use different model names or families — "
                       "treat the comparison as exploratory.\n")));
    QVERIFY(report.endsWith(QStringLiteral(
        "\n  Neuron pathways  Neither run has a saved neuron snapshot. Retrain to capture pathways.")));
}

void LibraryReportTest::saysThatThereIsNothing()
{
    QCOMPARE(nothingFound(QString()),
             QStringLiteral("No trained models yet. Complete a training run and it will appear "
                            "here under Finished models."));
    QCOMPARE(nothingFound(QStringLiteral("x")),
             QStringLiteral("No run has “x” in its name, version or folder."));
}

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::LibraryReportTest)
#include "LibraryReportTest.moc"
