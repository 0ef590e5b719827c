#include "library/ModelRunComparison.h"
#include "library/ModelLibraryStore.h"
#include "library/RunJson.h"
#include "tests/support/RunFolders.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <limits>

namespace zorel::tests {

using library::ArchivedModelRecord;
using library::ComparisonData;
using library::ModelLibraryStore;
using library::ModelRunComparison;
using library::toJson;

namespace {

QJsonValue at(const QJsonObject &object, const char *path)
{
    QJsonValue value = object;
    for (const QString &key : QString::fromLatin1(path).split(u'.')) {
        value = value[key];
    }
    return value;
}

} // namespace

class ModelRunComparisonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalityGoesByBothRuns();
    void loadsTheFilesOfBothRuns();
    void writesARunUnderTheKeysOfItsManifest();
    void writesEveryFigureOfAComparison();
    void writesNullForWhatIsMissing();
};

void ModelRunComparisonTest::equalityGoesByBothRuns()
{
    ModelRunComparison comparison;
    ModelRunComparison other = comparison;
    QVERIFY(comparison == other);
    other.candidate.step = 1;
    QVERIFY(comparison != other);
    other = comparison;
    other.baseline.hasLossCurve = true;
    QVERIFY(comparison != other);
}

void ModelRunComparisonTest::loadsTheFilesOfBothRuns()
{
    const RunFolders folders;
    folders.write(QStringLiteral("a/neuron_snapshot.json"), snapshotText(2, 3));
    folders.write(QStringLiteral("a/loss_curve.jsonl"), curveText(5));
    folders.write(QStringLiteral("b/neuron_snapshot.json"), "{");
    folders.write(QStringLiteral("b/loss_curve.jsonl"), curveText(7));
    ModelRunComparison comparison;
    comparison.baseline.path = folders.pathOf(QStringLiteral("a"));
    comparison.candidate.path = folders.pathOf(QStringLiteral("b"));
    const ComparisonData data = ComparisonData::load(ModelLibraryStore(), comparison);
    QVERIFY(data.baselineNeurons);
    QVERIFY(!data.candidateNeurons);
    QCOMPARE(data.baselineLoss.size(), std::size_t(5));
    QCOMPARE(data.candidateLoss.size(), std::size_t(7));
}

void ModelRunComparisonTest::writesARunUnderTheKeysOfItsManifest()
{
    const RunFolders folders;
    folders.addRun(QStringLiteral("run"), completeManifest());
    ModelLibraryStore store;
    store.scan(folders.path());
    const QJsonObject expected{
        {QStringLiteral("path"), folders.pathOf(QStringLiteral("run"))},
        {QStringLiteral("folder_name"), QStringLiteral("run")},
        {QStringLiteral("name"), QStringLiteral("tiny-lm")},
        {QStringLiteral("version"), QStringLiteral("1.2.3")},
        {QStringLiteral("author"), QStringLiteral("ada@example.org")},
        {QStringLiteral("step"), 1000},
        {QStringLiteral("max_steps"), 2000},
        {QStringLiteral("final_loss"), 2.5},
        {QStringLiteral("val_loss"), 2.75},
        {QStringLiteral("elapsed_seconds"), 61.5},
        {QStringLiteral("tokens_per_sec"), 1234.5},
        {QStringLiteral("archived_at"), QStringLiteral("2026-06-01T21:44:12.589Z")},
        {QStringLiteral("model_family"), QStringLiteral("text_language")},
        {QStringLiteral("training_capability"), QStringLiteral("finetune")},
        {QStringLiteral("has_loss_curve"), false},
        {QStringLiteral("has_neuron_snapshot"), false},
    };
    QCOMPARE(toJson(store.models().value(0)), expected);
}

void ModelRunComparisonTest::writesEveryFigureOfAComparison()
{
    const RunFolders folders;
    ModelRunComparison comparison;
    comparison.baseline.path = folders.pathOf(QStringLiteral("a"));
    comparison.baseline.finalLoss = 2.5;
    comparison.baseline.step = 9'007'199'254'740'993; // no double
    comparison.baseline.elapsedS = 100;
    comparison.candidate.path = folders.pathOf(QStringLiteral("b"));
    comparison.candidate.finalLoss = 2.25;
    comparison.candidate.step = 9'007'199'254'740'990;
    comparison.candidate.elapsedS = 40;
    folders.write(QStringLiteral("a/neuron_snapshot.json"), snapshotText(2, 3));
    folders.write(QStringLiteral("b/neuron_snapshot.json"), snapshotText(1, 3, 0.5));
    folders.write(QStringLiteral("a/loss_curve.jsonl"), curveText(5));
    folders.write(QStringLiteral("b/loss_curve.jsonl"), curveText(7));
    const QJsonObject json = toJson(comparison, ComparisonData::load(ModelLibraryStore(), comparison));

    QCOMPARE(at(json, "baseline.path"), QJsonValue(comparison.baseline.path));
    QCOMPARE(at(json, "candidate.path"), QJsonValue(comparison.candidate.path));
    QCOMPARE(at(json, "same_model"), QJsonValue(true));
    QCOMPARE(at(json, "final_loss_change"), QJsonValue(-0.25));
    QCOMPARE(at(json, "step_change"), QJsonValue(-3));
    QCOMPARE(at(json, "elapsed_seconds_change"), QJsonValue(-60));
    QCOMPARE(at(json, "loss_curves.baseline.points"), QJsonValue(5));
    QCOMPARE(at(json, "loss_curves.candidate.last_step"), QJsonValue(7));
    QCOMPARE(at(json, "loss_curves.candidate.lowest_step"), QJsonValue(7));
    QCOMPARE(at(json, "loss_curves.common_steps.first"), QJsonValue(1));
    QCOMPARE(at(json, "loss_curves.common_steps.last"), QJsonValue(5));
    QCOMPARE(at(json, "activation_change.same_shape"), QJsonValue(false));
    QCOMPARE(at(json, "activation_change.more_active"), QJsonValue(3));
    QCOMPARE(at(json, "activation_change.less_active"), QJsonValue(0));
    QCOMPARE(at(json, "activation_change.similar"), QJsonValue(3));
    const QJsonArray layers = at(json, "activation_change.layers").toArray();
    QCOMPARE(layers.size(), 2);
    QCOMPARE(layers[1][QStringLiteral("layer")], QJsonValue(1));
    QCOMPARE(layers[0][QStringLiteral("deltas")].toArray(), (QJsonArray{0.5, 0.5, 0.5}));
}

void ModelRunComparisonTest::writesNullForWhatIsMissing()
{
    ModelRunComparison comparison;
    comparison.baseline.finalLoss = -1e308;
    comparison.candidate.finalLoss = 1e308;
    comparison.baseline.step = std::numeric_limits<std::int64_t>::min();
    comparison.candidate.step = std::numeric_limits<std::int64_t>::max();
    const QJsonObject json = toJson(comparison, ComparisonData());
    for (const char *path : {"baseline.val_loss", "baseline.archived_at", "final_loss_change",
                             "loss_curves.baseline", "loss_curves.common_steps", "activation_change"}) {
        QVERIFY2(at(json, path).isNull(), path);
    }
    QCOMPARE(at(json, "step_change").toDouble(), 18446744073709551615.0);
    QVERIFY(!QJsonDocument(json).toJson().isEmpty());
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::ModelRunComparisonTest)
#include "ModelRunComparisonTest.moc"
