#include "library/ActivationDelta.h"

#include <QTest>

#include <cmath>
#include <limits>

using zorel::backend::protocol::LayerNeurons;
using zorel::backend::protocol::NeuronSnapshotPayload;
using zorel::backend::protocol::VisualNeuron;
using zorel::library::activationDeltas;
using zorel::library::ActivityChange;
using zorel::library::activityChange;
using zorel::library::DeltaRow;
using zorel::library::haveSameShape;

namespace {

VisualNeuron neuron(std::int64_t index, double activation)
{
    return {index, activation, 16 * index, 16 * index + 15};
}

NeuronSnapshotPayload snapshot(std::vector<LayerNeurons> layers)
{
    NeuronSnapshotPayload payload;
    payload.layers = std::move(layers);
    return payload;
}

} // namespace

class ActivationDeltaTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theThresholdsAreStrict_data();
    void theThresholdsAreStrict();
    void rowsAndCellsAreTheBaselines();
    void anExtraLayerOfTheCandidateIsNotShown();
    void whatTheCandidateLacksIsUnchanged();
    void ofDuplicatesTheFirstCounts();
    void emptySnapshotsHaveEmptyGrids();
    void manyNeuronsAreMatchedQuickly();
    void shapesAreComparedCellByCell_data();
    void shapesAreComparedCellByCell();
};

void ActivationDeltaTest::theThresholdsAreStrict_data()
{
    QTest::addColumn<double>("delta");
    QTest::addColumn<ActivityChange>("change");
    QTest::newRow("more") << 0.0501 << ActivityChange::moreActive;
    QTest::newRow("exactly more") << 0.05 << ActivityChange::similar;
    QTest::newRow("none") << 0.0 << ActivityChange::similar;
    QTest::newRow("exactly less") << -0.05 << ActivityChange::similar;
    QTest::newRow("less") << -0.0501 << ActivityChange::lessActive;
    QTest::newRow("infinitely more") << std::numeric_limits<double>::infinity() << ActivityChange::moreActive;
    QTest::newRow("no number") << std::nan("") << ActivityChange::similar;
}

void ActivationDeltaTest::theThresholdsAreStrict()
{
    QFETCH(double, delta);
    QFETCH(ActivityChange, change);
    QVERIFY(activityChange(delta) == change);
}

void ActivationDeltaTest::rowsAndCellsAreTheBaselines()
{
    const auto baseline = snapshot({{7, {neuron(1, 0.5), neuron(0, 1)}}, {2, {neuron(0, 0.25)}}});
    const auto candidate = snapshot({{2, {neuron(0, 1.25)}}, {7, {neuron(0, 1.5), neuron(1, 0.25)}}});
    QVERIFY(activationDeltas(baseline, candidate) == (std::vector<DeltaRow>{{7, {-0.25, 0.5}}, {2, {1.0}}}));
}

void ActivationDeltaTest::anExtraLayerOfTheCandidateIsNotShown()
{
    const auto baseline = snapshot({{0, {neuron(0, 1)}}});
    const auto candidate = snapshot({{0, {neuron(0, 2), neuron(1, 9)}}, {1, {neuron(0, 3)}}});
    QVERIFY(activationDeltas(baseline, candidate) == (std::vector<DeltaRow>{{0, {1.0}}}));
}

void ActivationDeltaTest::whatTheCandidateLacksIsUnchanged()
{
    const auto baseline = snapshot({{0, {neuron(0, 1), neuron(5, 1)}}, {1, {neuron(0, 7), neuron(1, 7)}}});
    const auto candidate = snapshot({{0, {neuron(0, 2), neuron(4, 8)}}});
    const std::vector<DeltaRow> rows = activationDeltas(baseline, candidate);
    QVERIFY(rows == (std::vector<DeltaRow>{{0, {1.0, 0.0}}, {1, {0.0, 0.0}}}));
    QVERIFY(activityChange(rows[0].deltas[1]) == ActivityChange::similar);
}

void ActivationDeltaTest::ofDuplicatesTheFirstCounts()
{
    const auto baseline = snapshot({{0, {neuron(0, 1), neuron(0, 2)}}, {0, {neuron(0, 3)}}});
    const auto candidate =
        snapshot({{0, {neuron(3, 9), neuron(0, 10), neuron(0, 20)}}, {0, {neuron(0, 30)}}});
    QVERIFY(activationDeltas(baseline, candidate) == (std::vector<DeltaRow>{{0, {9.0, 8.0}}, {0, {7.0}}}));
}

void ActivationDeltaTest::emptySnapshotsHaveEmptyGrids()
{
    QVERIFY(activationDeltas(snapshot({}), snapshot({{0, {neuron(0, 1)}}})).empty());
    QVERIFY(activationDeltas(snapshot({{4, {}}}), snapshot({})) == (std::vector<DeltaRow>{{4, {}}}));
}

void ActivationDeltaTest::manyNeuronsAreMatchedQuickly()
{
    // Compared each with each, these would take hours.
    constexpr std::int64_t count = 300'000;
    LayerNeurons forwards{0, {}};
    LayerNeurons backwards{0, {}};
    for (std::int64_t index = 0; index < count; ++index) {
        forwards.neurons.push_back(neuron(index, 1));
        backwards.neurons.push_back(neuron(count - 1 - index, 3));
    }
    const std::vector<DeltaRow> rows = activationDeltas(snapshot({forwards}), snapshot({backwards}));
    QVERIFY(rows[0].deltas == std::vector<double>(count, 2.0));
}

void ActivationDeltaTest::shapesAreComparedCellByCell_data()
{
    QTest::addColumn<NeuronSnapshotPayload>("candidate");
    QTest::addColumn<bool>("isSame");
    const LayerNeurons first{0, {neuron(0, 9), neuron(1, 9)}};
    const LayerNeurons second{1, {neuron(0, 9)}};
    QTest::newRow("same") << snapshot({first, second}) << true;
    QTest::newRow("other order") << snapshot({second, {0, {neuron(1, 0), neuron(0, 0)}}}) << true;
    QTest::newRow("fewer layers") << snapshot({first}) << false;
    QTest::newRow("more layers") << snapshot({first, second, {2, {}}}) << false;
    QTest::newRow("other layers") << snapshot({first, {2, second.neurons}}) << false;
    QTest::newRow("fewer neurons") << snapshot({first, {1, {}}}) << false;
    QTest::newRow("more neurons") << snapshot({first, {1, {neuron(0, 0), neuron(1, 0)}}}) << false;
    QTest::newRow("other neurons") << snapshot({first, {1, {neuron(1, 0)}}}) << false;
    QTest::newRow("other channels") << snapshot({first, {1, {{0, 1, 0, 31}}}}) << false;
    NeuronSnapshotPayload wide = snapshot({first, second});
    wide.hiddenDim = 64;
    QTest::newRow("wider") << wide << false;
    NeuronSnapshotPayload miscounted = snapshot({first, second});
    miscounted.nLayers = 99;
    QTest::newRow("wrong counts") << miscounted << true;
}

void ActivationDeltaTest::shapesAreComparedCellByCell()
{
    QFETCH(NeuronSnapshotPayload, candidate);
    QFETCH(bool, isSame);
    const auto baseline = snapshot({{0, {neuron(0, 1), neuron(1, 1)}}, {1, {neuron(0, 1)}}});
    QCOMPARE(haveSameShape(baseline, candidate), isSame);
}

QTEST_APPLESS_MAIN(ActivationDeltaTest)
#include "ActivationDeltaTest.moc"
