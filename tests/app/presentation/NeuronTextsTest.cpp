#include "app/presentation/NeuronTexts.h"

#include <QTest>

namespace zorel::tests {

using namespace app::presentation;
using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSelection;
using backend::protocol::VisualNeuron;

class NeuronTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cellsShareAFixedWidthWithinBounds_data();
    void cellsShareAFixedWidthWithinBounds();
    void tiersHaveTitles();
    void theToolTipNamesBlockNeuronChannelsAndTier();
    void theSentenceNamesBlockChannelsAndNumberOfBlocks();
    void anActivationHasFourDecimals();
    void aSelectionIsTheSameChannelGroupWhateverItsActivation();
    void aMissingSnapshotIsExplainedByTheState_data();
    void aMissingSnapshotIsExplainedByTheState();
    void theMessageForOtherFamiliesHasTwoLines();
};

void NeuronTextsTest::cellsShareAFixedWidthWithinBounds_data()
{
    QTest::addColumn<qint64>("neurons");
    QTest::addColumn<double>("points");
    QTest::newRow("32 groups") << qint64{32} << 10.0;
    QTest::newRow("16 groups: at most 14") << qint64{16} << 14.0;
    QTest::newRow("80 groups: at least 6") << qint64{80} << 6.0;
    QTest::newRow("64 groups: at least 6") << qint64{64} << 6.0;
    QTest::newRow("40 groups") << qint64{40} << 8.0;
    QTest::newRow("none") << qint64{0} << 14.0;
    QTest::newRow("a negative count") << qint64{-5} << 6.0;
}

void NeuronTextsTest::cellsShareAFixedWidthWithinBounds()
{
    QFETCH(qint64, neurons);
    QTEST(heatmapCellSize(neurons), "points");
}

void NeuronTextsTest::tiersHaveTitles()
{
    QCOMPARE(tierTitle(NeuronActivityTier::inactive), QStringLiteral("Inactive"));
    QCOMPARE(tierTitle(NeuronActivityTier::moderate), QStringLiteral("Moderate"));
    QCOMPARE(tierTitle(NeuronActivityTier::high), QStringLiteral("Highly active"));
}

void NeuronTextsTest::theToolTipNamesBlockNeuronChannelsAndTier()
{
    QCOMPARE(neuronToolTip(3, VisualNeuron{2, 0.5, 128, 191, NeuronActivityTier::high}),
             QStringLiteral("Layer 3, neuron 2 (dims 128–191): Highly active"));
}

void NeuronTextsTest::theSentenceNamesBlockChannelsAndNumberOfBlocks()
{
    const NeuronSelection selection{3, VisualNeuron{2, 0.5, 128, 191, NeuronActivityTier::moderate}};
    QCOMPARE(selectedNeuronSentence(selection, 12),
             QStringLiteral("Hidden channels 128–191 in transformer block 3 of 12. "
                            "Mean absolute activation averaged over the training batch."));
}

void NeuronTextsTest::anActivationHasFourDecimals()
{
    QCOMPARE(activationText(0.123456), QStringLiteral("0.1235"));
    QCOMPARE(activationText(12), QStringLiteral("12.0000"));
}

void NeuronTextsTest::aSelectionIsTheSameChannelGroupWhateverItsActivation()
{
    const NeuronSelection selection{3, VisualNeuron{2, 0.5, 128, 191, NeuronActivityTier::moderate}};
    QVERIFY(isSelected(selection, 3, VisualNeuron{2, 0.9, 128, 191, NeuronActivityTier::high}));
    QVERIFY(!isSelected(selection, 4, selection.neuron));
    QVERIFY(!isSelected(selection, 3, VisualNeuron{1, 0.5, 64, 127, NeuronActivityTier::moderate}));
    // Another model's group of the same number may hold other channels.
    QVERIFY(!isSelected(selection, 3, VisualNeuron{2, 0.5, 96, 191, NeuronActivityTier::moderate}));
    QVERIFY(!isSelected(selection, 3, VisualNeuron{2, 0.5, 128, 255, NeuronActivityTier::moderate}));
    QVERIFY(!isSelected(selection, 3, VisualNeuron{1, 0.5, 128, 191, NeuronActivityTier::moderate}));
}

void NeuronTextsTest::aMissingSnapshotIsExplainedByTheState_data()
{
    QTest::addColumn<QString>("state");
    QTest::addColumn<QString>("text");
    const QString begins = QStringLiteral("Neuron activity will appear once training begins.");
    const QString capturing = QStringLiteral("Capturing first neuron snapshot…");
    const QString start = QStringLiteral("Start training to visualize neuron activations.");
    const QString press = QStringLiteral("Press Start to begin neuron monitoring.");
    QTest::newRow("preparing") << QStringLiteral("preparing") << begins;
    QTest::newRow("starting") << QStringLiteral("starting") << begins;
    QTest::newRow("running") << QStringLiteral("running") << capturing;
    QTest::newRow("paused") << QStringLiteral("paused") << capturing;
    QTest::newRow("done") << QStringLiteral("done") << start;
    QTest::newRow("idle") << QStringLiteral("idle") << start;
    QTest::newRow("stopping") << QStringLiteral("stopping") << press;
    QTest::newRow("none yet") << QString() << press;
}

void NeuronTextsTest::aMissingSnapshotIsExplainedByTheState()
{
    QFETCH(QString, state);
    QTEST(missingSnapshotText(state), "text");
}

void NeuronTextsTest::theMessageForOtherFamiliesHasTwoLines()
{
    QCOMPARE(neuronsOfOtherFamiliesText(),
             QStringLiteral("Neuron visualization is available for text language models.\n"
                            "Image and multimodal models use convolutional feature maps."));
}

} // namespace zorel::tests

QTEST_APPLESS_MAIN(zorel::tests::NeuronTextsTest)
#include "NeuronTextsTest.moc"
