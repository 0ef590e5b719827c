#include "app/presentation/ComparisonTexts.h"
#include "tests/support/RunFolders.h"

#include "backend/protocol/SnapshotDecoder.h"

#include <QTest>

#include <limits>

namespace zorel::tests {

using namespace app::presentation;
using library::ActivityChange;
using library::ArchivedModelRecord;
using library::ComparisonData;
using library::ModelRunComparison;

namespace {

const QLocale english(QLocale::English, QLocale::UnitedStates);

ModelRunComparison lossesOf(double baseline, double candidate)
{
    ModelRunComparison comparison;
    comparison.baseline.finalLoss = baseline;
    comparison.candidate.finalLoss = candidate;
    return comparison;
}

ModelRunComparison stepsOf(std::int64_t baseline, std::int64_t candidate)
{
    ModelRunComparison comparison;
    comparison.baseline.step = baseline;
    comparison.candidate.step = candidate;
    return comparison;
}

ModelRunComparison timesOf(double baseline, double candidate)
{
    ModelRunComparison comparison;
    comparison.baseline.elapsedS = baseline;
    comparison.candidate.elapsedS = candidate;
    return comparison;
}

std::vector<backend::protocol::LossPoint> curve(std::int64_t first, std::int64_t last)
{
    std::vector<backend::protocol::LossPoint> points;
    for (std::int64_t step = first; step <= last; ++step) {
        points.emplace_back(step, 2.5);
    }
    return points;
}

backend::protocol::NeuronSnapshotPayload snapshot(int layers, int neurons)
{
    return backend::protocol::decodeSnapshot(snapshotText(layers, neurons).toStdString()).value();
}

} // namespace

class ComparisonTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void runsOfDifferentModelsAreWarnedOf_data();
    void runsOfDifferentModelsAreWarnedOf();
    void theLossChangeIsSigned_data();
    void theLossChangeIsSigned();
    void stepsAreGroupedAndTheirDifferenceIsNot_data();
    void stepsAreGroupedAndTheirDifferenceIsNot();
    void stepsFollowTheLocale();
    void stepsAreGroupedWithoutALocaleToo();
    void lessTimeIsWrittenWithoutSign_data();
    void lessTimeIsWrittenWithoutSign();
    void theMissingSnapshotIsNamedByTheFlags_data();
    void theMissingSnapshotIsNamedByTheFlags();
    void changesHaveTitlesAndColours();
    void aCellsToolTipIsItsDelta();
    void cellsShareAFixedWidthWithinBounds_data();
    void cellsShareAFixedWidthWithinBounds();
    void curvesOfDifferentLengthSayWhatTheyShare_data();
    void curvesOfDifferentLengthSayWhatTheyShare();
    void aCurveThatIsMissingIsNamed();
    void modelsOfDifferentShapeAreToldApart();
};

void ComparisonTextsTest::runsOfDifferentModelsAreWarnedOf_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("family");
    QTest::addColumn<bool>("isWarnedOf");
    QTest::newRow("same") << QStringLiteral("tiny-lm") << QStringLiteral("text_language") << false;
    QTest::newRow("other family") << QStringLiteral("tiny-lm") << QStringLiteral("multimodal") << true;
    QTest::newRow("other name") << QStringLiteral("tiny") << QStringLiteral("text_language") << true;
    QTest::newRow("other case") << QStringLiteral("Tiny-lm") << QStringLiteral("text_language") << true;
}

void ComparisonTextsTest::runsOfDifferentModelsAreWarnedOf()
{
    QFETCH(QString, name);
    QFETCH(QString, family);
    QFETCH(bool, isWarnedOf);
    ModelRunComparison comparison;
    comparison.baseline.name = QStringLiteral("tiny-lm");
    comparison.baseline.modelFamily = QStringLiteral("text_language");
    comparison.baseline.version = QStringLiteral("1");
    comparison.baseline.trainingCapability = QStringLiteral("pretrain");
    comparison.candidate.name = name;
    comparison.candidate.modelFamily = family;
    comparison.candidate.version = QStringLiteral("2");
    comparison.candidate.author = QStringLiteral("Ada");
    comparison.candidate.trainingCapability = QStringLiteral("lora");
    QCOMPARE(
        identityWarning(comparison),
        isWarnedOf
            ? QStringLiteral(
                  "These runs use different model names or families — treat the comparison as exploratory.")
            : QString());
}

void ComparisonTextsTest::theLossChangeIsSigned_data()
{
    QTest::addColumn<double>("baseline");
    QTest::addColumn<double>("candidate");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("symbol");
    const QString good = QStringLiteral("arrow.down.right");
    const QString bad = QStringLiteral("arrow.up.right");
    QTest::newRow("unchanged") << 2.5 << 2.5 << QStringLiteral("+0.0000") << bad;
    QTest::newRow("lower") << 2.5 << 2.25 << QStringLiteral("-0.2500") << good;
    QTest::newRow("higher") << 2.25 << 12.5 << QStringLiteral("+10.2500") << bad;
    QTest::newRow("lower by less than is shown") << 2.5 << 2.49999 << QStringLiteral("-0.0000") << good;
    QTest::newRow("beyond all numbers") << -1e308 << 1e308 << QStringLiteral("—") << bad;
}

void ComparisonTextsTest::theLossChangeIsSigned()
{
    QFETCH(double, baseline);
    QFETCH(double, candidate);
    QTEST(lossChangeText(lossesOf(baseline, candidate)), "text");
    QTEST(trendSymbol(lossTrend(lossesOf(baseline, candidate))), "symbol");
}

void ComparisonTextsTest::stepsAreGroupedAndTheirDifferenceIsNot_data()
{
    QTest::addColumn<qint64>("baseline");
    QTest::addColumn<qint64>("candidate");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("symbol");
    const QString good = QStringLiteral("arrow.down.right");
    const QString bad = QStringLiteral("arrow.up.right");
    constexpr auto least = std::numeric_limits<qint64>::min();
    constexpr auto most = std::numeric_limits<qint64>::max();
    QTest::newRow("fewer") << qint64{1000} << qint64{800} << QStringLiteral("1,000 → 800 (-200)") << bad;
    QTest::newRow("equal") << qint64{800} << qint64{800} << QStringLiteral("800 → 800 (+0)") << good;
    QTest::newRow("more") << qint64{800} << qint64{50'000} << QStringLiteral("800 → 50,000 (+49200)") << good;
    QTest::newRow("beyond 64 bits") << least << most
                                    << QStringLiteral(
                                           "-9,223,372,036,854,775,808 → 9,223,372,036,854,775,807 "
                                           "(+18446744073709551615)")
                                    << good;
    QTest::newRow("beyond 64 bits, downwards")
        << most << least
        << QStringLiteral("9,223,372,036,854,775,807 → -9,223,372,036,854,775,808 (-18446744073709551615)")
        << bad;
}

void ComparisonTextsTest::stepsAreGroupedAndTheirDifferenceIsNot()
{
    QFETCH(qint64, baseline);
    QFETCH(qint64, candidate);
    QTEST(stepsText(stepsOf(baseline, candidate), english), "text");
    QTEST(trendSymbol(stepsTrend(stepsOf(baseline, candidate))), "symbol");
}

void ComparisonTextsTest::stepsFollowTheLocale()
{
    const QLocale german(QLocale::German, QLocale::Germany);
    QCOMPARE(stepsText(stepsOf(12'345, 1'234'567), german), QStringLiteral("12.345 → 1.234.567 (+1222222)"));
    QLocale::setDefault(german);
    const QString byDefault = stepsText(stepsOf(12'345, 0));
    QLocale::setDefault(QLocale::c());
    QCOMPARE(byDefault, QStringLiteral("12.345 → 0 (-12345)"));
}

void ComparisonTextsTest::stepsAreGroupedWithoutALocaleToo()
{
    QCOMPARE(stepsText(stepsOf(1000, 800), QLocale::c()), QStringLiteral("1,000 → 800 (-200)"));
}

void ComparisonTextsTest::lessTimeIsWrittenWithoutSign_data()
{
    QTest::addColumn<double>("baseline");
    QTest::addColumn<double>("candidate");
    QTest::addColumn<QString>("text");
    QTest::newRow("a minute less") << 100.0 << 40.0 << QStringLiteral("1m0s");
    QTest::newRow("a minute more") << 40.0 << 100.0 << QStringLiteral("+1m0s");
    QTest::newRow("seconds more") << 0.0 << 42.0 << QStringLiteral("+42s");
    QTest::newRow("seconds less") << 42.9 << 0.0 << QStringLiteral("42s");
    QTest::newRow("just under a minute") << 0.0 << 59.999 << QStringLiteral("+59s");
    QTest::newRow("equal") << 7.0 << 7.0 << QStringLiteral("+0s");
    QTest::newRow("a little less") << 7.5 << 7.0 << QStringLiteral("0s");
    QTest::newRow("no hours") << 0.0 << 7507.0 << QStringLiteral("+125m7s");
    QTest::newRow("three minutes less") << 180.0 << 0.0 << QStringLiteral("3m0s");
    QTest::newRow("centuries") << 0.0 << 6e15 << QStringLiteral("+100000000000000m0s");
    QTest::newRow("not finite") << -1e308 << 1e308 << QStringLiteral("—");
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 1.0 << QStringLiteral("—");
}

void ComparisonTextsTest::lessTimeIsWrittenWithoutSign()
{
    QFETCH(double, baseline);
    QFETCH(double, candidate);
    QTEST(trainingTimeText(timesOf(baseline, candidate)), "text");
}

void ComparisonTextsTest::theMissingSnapshotIsNamedByTheFlags_data()
{
    QTest::addColumn<bool>("baseline");
    QTest::addColumn<bool>("candidate");
    QTest::addColumn<QString>("text");
    const QString ofCandidate = QStringLiteral("The candidate run has no neuron snapshot.");
    QTest::newRow("both files, one damaged") << true << true << ofCandidate;
    QTest::newRow("candidate") << true << false << ofCandidate;
    QTest::newRow("baseline") << false << true << QStringLiteral("The baseline run has no neuron snapshot.");
    QTest::newRow("both") << false << false
                          << QStringLiteral(
                                 "Neither run has a saved neuron snapshot. Retrain to capture pathways.");
}

void ComparisonTextsTest::theMissingSnapshotIsNamedByTheFlags()
{
    QFETCH(bool, baseline);
    QFETCH(bool, candidate);
    ModelRunComparison comparison;
    comparison.baseline.hasNeuronSnapshot = baseline;
    comparison.candidate.hasNeuronSnapshot = candidate;
    QTEST(snapshotMessage(comparison), "text");
}

void ComparisonTextsTest::changesHaveTitlesAndColours()
{
    QStringList titles;
    for (const ActivityChange change : legendChanges) {
        titles << changeTitle(change);
    }
    QCOMPARE(titles, (QStringList{QStringLiteral("More active"), QStringLiteral("Less active"),
                                  QStringLiteral("Similar")}));
    QVERIFY(changeColor(ActivityChange::moreActive) == (SrgbColor{0.15, 0.62, 0.30}));
    QVERIFY(changeColor(ActivityChange::lessActive) == (SrgbColor{0.85, 0.25, 0.22}));
    QVERIFY(changeColor(ActivityChange::similar) == (SrgbColor{0.82, 0.82, 0.82}));
}

void ComparisonTextsTest::aCellsToolTipIsItsDelta()
{
    QCOMPARE(deltaToolTip(0.03125), QStringLiteral("Δ 0.0312"));
    QCOMPARE(deltaToolTip(-1.5), QStringLiteral("Δ -1.5000"));
    QCOMPARE(deltaToolTip(0), QStringLiteral("Δ 0.0000"));
}

void ComparisonTextsTest::cellsShareAFixedWidthWithinBounds_data()
{
    QTest::addColumn<qint64>("neurons");
    QTest::addColumn<double>("points");
    QTest::newRow("64: at least 5") << qint64{64} << 5.0;
    QTest::newRow("20: at most 12") << qint64{20} << 12.0;
    QTest::newRow("28") << qint64{28} << 10.0;
    QTest::newRow("none") << qint64{0} << 12.0;
    QTest::newRow("a negative count") << qint64{-3} << 5.0;
}

void ComparisonTextsTest::cellsShareAFixedWidthWithinBounds()
{
    QFETCH(qint64, neurons);
    QTEST(deltaCellSize(neurons), "points");
}

void ComparisonTextsTest::curvesOfDifferentLengthSayWhatTheyShare_data()
{
    using Curve = std::vector<backend::protocol::LossPoint>;
    QTest::addColumn<Curve>("baseline");
    QTest::addColumn<Curve>("candidate");
    QTest::addColumn<QString>("text");
    QTest::newRow("equal") << curve(1, 800) << curve(1, 800) << QString();
    QTest::newRow("longer") << curve(1, 1200) << curve(1, 2000)
                            << QStringLiteral("Both curves have data from step 1 to step 1,200.");
    QTest::newRow("later") << curve(1, 20) << curve(10, 15)
                           << QStringLiteral("Both curves have data from step 10 to step 15.");
    QTest::newRow("one step") << curve(1, 20) << curve(20, 30)
                              << QStringLiteral("Both curves have data at step 20 only.");
    QTest::newRow("apart") << curve(1, 20) << curve(21, 30)
                           << QStringLiteral("The two curves have no steps in common.");
    QTest::newRow("one empty") << curve(1, 20) << Curve() << QString();
    QTest::newRow("both empty") << Curve() << Curve() << QString();
}

void ComparisonTextsTest::curvesOfDifferentLengthSayWhatTheyShare()
{
    QFETCH(std::vector<backend::protocol::LossPoint>, baseline);
    QFETCH(std::vector<backend::protocol::LossPoint>, candidate);
    ComparisonData data;
    data.baselineLoss = baseline;
    data.candidateLoss = candidate;
    QTEST(commonStepsNotice(data, english), "text");
}

void ComparisonTextsTest::aCurveThatIsMissingIsNamed()
{
    ComparisonData data;
    QCOMPARE(missingCurveNotice(data), QString());
    data.baselineLoss.emplace_back(1, 2.5);
    QCOMPARE(missingCurveNotice(data), QStringLiteral("The candidate run has no loss curve."));
    data.candidateLoss.emplace_back(1, 2.5);
    QCOMPARE(missingCurveNotice(data), QString());
    data.baselineLoss.clear();
    QCOMPARE(missingCurveNotice(data), QStringLiteral("The baseline run has no loss curve."));
}

void ComparisonTextsTest::modelsOfDifferentShapeAreToldApart()
{
    ComparisonData data;
    QCOMPARE(shapeNotice(data), QString());
    data.baselineNeurons = snapshot(4, 32);
    QCOMPARE(shapeNotice(data), QString());
    data.candidateNeurons = snapshot(4, 32);
    QCOMPARE(shapeNotice(data), QString());

    const QString rest =
        QStringLiteral(" Cells compare groups of the same number; those without a counterpart are grey.");
    data.candidateNeurons = snapshot(1, 16);
    QCOMPARE(
        shapeNotice(data),
        QStringLiteral("The two models differ in shape: the baseline has 4 blocks of 32 channel groups (512 "
                       "channels), the candidate 1 block of 16 channel groups (256 channels).") +
            rest);
    data.candidateNeurons = snapshot(4, 32);
    data.candidateNeurons->layers[3].neurons[31].dimEnd = 7;
    QCOMPARE(shapeNotice(data), QStringLiteral("The two models group their channels differently.") + rest);
}

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::ComparisonTextsTest)
#include "ComparisonTextsTest.moc"
