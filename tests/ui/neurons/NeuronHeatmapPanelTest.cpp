#include "ui/neurons/NeuronHeatmapPanel.h"
#include "tests/support/Snapshots.h"
#include "ui/kit/SymbolLabel.h"
#include "ui/kit/TextLabel.h"
#include "ui/neurons/CellGrid.h"

#include <QHelpEvent>
#include <QSignalSpy>
#include <QTest>
#include <QToolTip>

namespace zorel::tests {

using backend::protocol::NeuronActivityTier;
using backend::protocol::NeuronSelection;
using ui::neurons::CellPosition;
using ui::neurons::NeuronHeatmapPanel;
using Selection = std::optional<NeuronSelection>;

class NeuronHeatmapPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theHeaderNamesTitleSubtitleStepAndTiers();
    void cellsAreAsLargeAsTheGroupsAllow_data();
    void cellsAreAsLargeAsTheGroupsAllow();
    void aPressedCellIsChosen();
    void theSelectedCellPressedAgainClearsTheSelection();
    void theDetailsNameTheSelection();
    void thereAreNoDetailsWithoutASelection();
    void aSelectionThatTheSnapshotLacksKeepsItsDetailsWithoutAnOutline();
    void theDetailsFollowTheSnapshot();
    void anotherGroupOfTheSameNumberIsNotTheSelectedOne();
    void theTooltipSaysWhatACellIs();
    void theGridCarriesItsName();

private:
    static QStringList visibleTexts(const QWidget &panel)
    {
        QStringList texts;
        const auto labels = panel.findChildren<ui::kit::TextLabel *>();
        for (const auto *label : labels) {
            if (label->isVisibleTo(&panel) && !label->text().isEmpty()) {
                texts << label->text();
            }
        }
        return texts;
    }
};

void NeuronHeatmapPanelTest::theHeaderNamesTitleSubtitleStepAndTiers()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"), 220);
    panel.setSnapshot(makeSnapshot(2, 4));
    QCOMPARE(visibleTexts(panel).mid(0, 5),
             QStringList({QStringLiteral("Neuron activity"), QStringLiteral("step 120"),
                          QStringLiteral("Highly active"), QStringLiteral("Moderate"),
                          QStringLiteral("Inactive")}));
    panel.setSubtitle(QStringLiteral("live"));
    QVERIFY(visibleTexts(panel).contains(QStringLiteral("live")));
    QCOMPARE(panel.findChild<ui::kit::SymbolLabel *>()->symbol(), QStringLiteral("brain.head.profile"));
}

void NeuronHeatmapPanelTest::cellsAreAsLargeAsTheGroupsAllow_data()
{
    QTest::addColumn<int>("groups");
    QTest::addColumn<qreal>("points");
    QTest::newRow("32 groups") << 32 << 10.0;
    QTest::newRow("16 groups") << 16 << 14.0;
    QTest::newRow("80 groups") << 80 << 6.0;
}

void NeuronHeatmapPanelTest::cellsAreAsLargeAsTheGroupsAllow()
{
    QFETCH(int, groups);
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    panel.setSnapshot(makeSnapshot(2, groups));
    QTEST(panel.grid()->geometryOfCells().cellSize(), "points");
}

void NeuronHeatmapPanelTest::aPressedCellIsChosen()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    const auto snapshot = makeSnapshot(4, 4);
    panel.setSnapshot(snapshot);
    QSignalSpy chosen(&panel, &NeuronHeatmapPanel::selectionChosen);
    panel.grid()->pressCell({3, 2});
    QCOMPARE(chosen.size(), 1);
    QCOMPARE(chosen[0][0].value<Selection>(), Selection(NeuronSelection{3, snapshot.layers[3].neurons[2]}));
    QVERIFY2(!panel.grid()->selectedCell(), "the screen owns the selection");
}

void NeuronHeatmapPanelTest::theSelectedCellPressedAgainClearsTheSelection()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    const auto snapshot = makeSnapshot(4, 4);
    panel.setSnapshot(snapshot);
    panel.setSelection(NeuronSelection{1, snapshot.layers[1].neurons[2]});
    QCOMPARE(panel.grid()->selectedCell(), (CellPosition{1, 2}));
    QSignalSpy chosen(&panel, &NeuronHeatmapPanel::selectionChosen);
    panel.grid()->pressCell({1, 2});
    QCOMPARE(chosen[0][0].value<Selection>(), Selection());
    panel.setSelection(std::nullopt);
    QVERIFY(!panel.grid()->selectedCell());
}

void NeuronHeatmapPanelTest::theDetailsNameTheSelection()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    auto snapshot = makeSnapshot(12, 4);
    panel.setSnapshot(snapshot);
    panel.setSelection(NeuronSelection{3, snapshot.layers[3].neurons[2]});
    const QStringList texts = visibleTexts(panel);
    const qsizetype start = texts.indexOf(QStringLiteral("Selected neuron"));
    QVERIFY(start >= 0);
    QCOMPARE(texts.mid(start),
             QStringList({QStringLiteral("Selected neuron"),
                          QStringLiteral("Hidden channels 128–191 in transformer block 3 of 12. "
                                         "Mean absolute activation averaged over the training batch."),
                          QStringLiteral("Layer"), QStringLiteral("3"), QStringLiteral("Neuron"),
                          QStringLiteral("2"), QStringLiteral("Dims"), QStringLiteral("128–191"),
                          QStringLiteral("Activation"), QStringLiteral("0.3200"), QStringLiteral("State"),
                          QStringLiteral("Highly active")}));
}

void NeuronHeatmapPanelTest::thereAreNoDetailsWithoutASelection()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    panel.setSnapshot(makeSnapshot(4, 4));
    QVERIFY(!visibleTexts(panel).contains(QStringLiteral("Selected neuron")));
}

void NeuronHeatmapPanelTest::aSelectionThatTheSnapshotLacksKeepsItsDetailsWithoutAnOutline()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    const auto snapshot = makeSnapshot(4, 4);
    panel.setSnapshot(snapshot);
    panel.setSelection(NeuronSelection{3, snapshot.layers[3].neurons[3]});
    panel.setSnapshot(makeSnapshot(2, 2));
    QVERIFY(!panel.grid()->selectedCell());
    QVERIFY(visibleTexts(panel).contains(QStringLiteral("192–255")));
    panel.setSnapshot(snapshot);
    QCOMPARE(panel.grid()->selectedCell(), (CellPosition{3, 3}));
}

void NeuronHeatmapPanelTest::theDetailsFollowTheSnapshot()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    auto snapshot = makeSnapshot(4, 4);
    panel.setSnapshot(snapshot);
    panel.setSelection(NeuronSelection{3, snapshot.layers[3].neurons[2]});
    QVERIFY(visibleTexts(panel).contains(QStringLiteral("0.3200")));
    snapshot.layers[3].neurons[2].activation = 0.75;
    snapshot.layers[3].neurons[2].tier = NeuronActivityTier::inactive;
    panel.setSnapshot(snapshot);
    const QStringList texts = visibleTexts(panel);
    QVERIFY(texts.contains(QStringLiteral("0.7500")));
    QVERIFY(!texts.contains(QStringLiteral("0.3200")));
    QCOMPARE(texts.last(), QStringLiteral("Inactive"));
}

void NeuronHeatmapPanelTest::anotherGroupOfTheSameNumberIsNotTheSelectedOne()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    auto wider = makeSnapshot(4, 4);
    wider.layers[1].neurons[2].dimEnd += 64;
    panel.setSnapshot(wider);
    panel.setSelection(NeuronSelection{1, makeSnapshot(4, 4).layers[1].neurons[2]});
    QVERIFY(!panel.grid()->selectedCell());
    QVERIFY(visibleTexts(panel).contains(QStringLiteral("128–191")));
    // Pressing it is a choice of its own.
    QSignalSpy chosen(&panel, &NeuronHeatmapPanel::selectionChosen);
    panel.grid()->pressCell({1, 2});
    QVERIFY(chosen[0][0].value<Selection>().has_value());
}

void NeuronHeatmapPanelTest::theTooltipSaysWhatACellIs()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    panel.setSnapshot(makeSnapshot(4, 4));
    panel.show();
    QVERIFY(QTest::qWaitForWindowExposed(&panel));
    const QPoint centre = panel.grid()->geometryOfCells().cell({1, 2}).center().toPoint();
    QHelpEvent help(QEvent::ToolTip, centre, panel.grid()->mapToGlobal(centre));
    QCoreApplication::sendEvent(panel.grid(), &help);
    QCOMPARE(QToolTip::text(), QStringLiteral("Layer 1, neuron 2 (dims 128–191): Inactive"));
}

void NeuronHeatmapPanelTest::theGridCarriesItsName()
{
    NeuronHeatmapPanel panel(QStringLiteral("Neuron activity"));
    QCOMPARE(panel.grid()->accessibleName(), QStringLiteral("Neuron activation heatmap"));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::NeuronHeatmapPanelTest)
#include "NeuronHeatmapPanelTest.moc"
