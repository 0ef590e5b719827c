#include "tests/backend/bridge/ControllerFixture.h"

#include <QSignalSpy>

namespace zorel::tests {

namespace protocol = backend::protocol;
using backend::bridge::BackendController;

namespace {

protocol::NeuronSnapshotPayload snapshot(bool final, std::int64_t layer, std::int64_t index,
                                         double activation)
{
    protocol::NeuronSnapshotPayload payload;
    payload.final = final;
    payload.layers = {{layer, {{index, activation, 0, 63, protocol::NeuronActivityTier::high}}}};
    return payload;
}

} // namespace

/// The snapshots of neurons that the controller keeps, and the neuron chosen in them.
class BackendSnapshotTest : public ControllerFixture
{
    Q_OBJECT

private Q_SLOTS:
    void init() { makeController(); }
    void cleanup() { endController(); }

    void aFinalSnapshotLeavesTheLiveOne();
    void aLiveSnapshotLeavesTheFinalOne();
    void theSelectionFollowsNewSnapshots();
    void theSelectionIsKeptWhenItsLayerIsMissing();
    void theSelectionIsKeptWhenItsIndexIsMissing();
};

void BackendSnapshotTest::aFinalSnapshotLeavesTheLiveOne()
{
    m_controller->apply(snapshot(false, 0, 0, 0.1));
    m_controller->apply(snapshot(true, 0, 0, 0.2));
    QCOMPARE(m_controller->liveNeurons()->layers[0].neurons[0].activation, 0.1);
    QCOMPARE(m_controller->finalNeurons()->layers[0].neurons[0].activation, 0.2);
}

void BackendSnapshotTest::aLiveSnapshotLeavesTheFinalOne()
{
    QSignalSpy live(m_controller.get(), &BackendController::liveNeuronsChanged);
    QSignalSpy final(m_controller.get(), &BackendController::finalNeuronsChanged);
    m_controller->apply(snapshot(true, 0, 0, 0.2));
    m_controller->apply(snapshot(false, 0, 0, 0.1));
    QCOMPARE(m_controller->finalNeurons()->layers[0].neurons[0].activation, 0.2);
    QCOMPARE(live.count(), 1);
    QCOMPARE(final.count(), 1);
}

void BackendSnapshotTest::theSelectionFollowsNewSnapshots()
{
    m_controller->setSelectedNeuron(
        protocol::NeuronSelection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}});
    m_controller->apply(snapshot(false, 3, 7, 0.9));
    QCOMPARE(m_controller->selectedNeuron()->neuron.activation, 0.9);
    QVERIFY(m_controller->selectedNeuron()->neuron.tier == protocol::NeuronActivityTier::high);
    m_controller->apply(snapshot(true, 3, 7, 0.4));
    QCOMPARE(m_controller->selectedNeuron()->neuron.activation, 0.4);
}

void BackendSnapshotTest::theSelectionIsKeptWhenItsLayerIsMissing()
{
    const protocol::NeuronSelection selection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}};
    m_controller->setSelectedNeuron(selection);
    m_controller->apply(snapshot(false, 4, 7, 0.9));
    QVERIFY(m_controller->selectedNeuron() == selection);
}

void BackendSnapshotTest::theSelectionIsKeptWhenItsIndexIsMissing()
{
    const protocol::NeuronSelection selection{3, {7, 0.1, 0, 63, protocol::NeuronActivityTier::inactive}};
    m_controller->setSelectedNeuron(selection);
    m_controller->apply(snapshot(false, 3, 8, 0.9));
    QVERIFY(m_controller->selectedNeuron() == selection);
}

} // namespace zorel::tests

QTEST_GUILESS_MAIN(zorel::tests::BackendSnapshotTest)
#include "BackendSnapshotTest.moc"
