#include "ui/library/PathwayChanges.h"
#include "tests/ui/library/Stage.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/CellGridView.h"
#include "ui/neurons/NeuronHeatmapPanel.h"

#include <QScrollBar>
#include <QTest>

namespace zorel::tests {

using ui::neurons::CellGrid;
using ui::neurons::CellGridView;
using ui::neurons::CellPosition;
using ui::neurons::NeuronHeatmapPanel;

namespace {

constexpr QRgb moreActive = qRgb(38, 158, 77);
constexpr QRgb lessActive = qRgb(217, 64, 56);
constexpr QRgb similar = qRgb(209, 209, 209);

} // namespace

/// What the comparison shows of the neurons.
class PathwayChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_stage = std::make_unique<ComparisonStage>(); }

    void missingSnapshotsAreExplained();
    void coloursTheDifferences();
    void anAdditionalLayerOfTheCandidateIsNotShown();
    void cellsAreAsLargeAsTheBaselinesGroupsAllow();
    void aHighGridScrollsWithoutIndicators();
    void aNeuronThatTheCandidateLacksIsGrey();
    void bothHeatmapsShareTheSelection();
    void thirtyTwoGroupsFitBesideEachOtherInASmallWindow();

private:
    void compareSnapshots(const QByteArray &baseline, const QByteArray &candidate)
    {
        m_stage->compare({.snapshot = baseline}, {.snapshot = candidate});
    }
    /// Null when there is none.
    CellGrid *deltaGrid() const;
    QList<NeuronHeatmapPanel *> panels() const
    {
        return m_stage->sheet().findChildren<NeuronHeatmapPanel *>();
    }

    std::unique_ptr<ComparisonStage> m_stage;
};

CellGrid *PathwayChangesTest::deltaGrid() const
{
    const auto grids = m_stage->sheet().findChildren<CellGrid *>();
    for (auto *grid : grids) {
        if (grid->accessibleName() == QStringLiteral("Activation delta (candidate − baseline)")) {
            return grid;
        }
    }
    return nullptr;
}

void PathwayChangesTest::missingSnapshotsAreExplained()
{
    compareSnapshots(snapshotText(2, 4), {});
    QVERIFY(m_stage->shows(QStringLiteral("Neuron pathway changes")));
    QVERIFY(m_stage->shows(QStringLiteral("The candidate run has no neuron snapshot.")));
    QVERIFY(!deltaGrid());
    QVERIFY(!m_stage->shows(QStringLiteral("More active")));
    QVERIFY(panels().isEmpty());
}

void PathwayChangesTest::coloursTheDifferences()
{
    compareSnapshots(snapshotText(2, 4), snapshotText(2, 4, 0.2));
    for (const char *title :
         {"More active", "Less active", "Similar", "Activation delta (candidate − baseline)"}) {
        QVERIFY2(m_stage->shows(QString::fromUtf8(title)), title);
    }
    QCOMPARE(deltaGrid()->source()->color({1, 2}), moreActive);
    QCOMPARE(deltaGrid()->source()->toolTip({1, 2}), QStringLiteral("Δ 0.2000"));
    QCOMPARE(deltaGrid()->geometryOfCells().cellSize(), 12.0);

    compareSnapshots(snapshotText(2, 4), snapshotText(2, 4, -0.2));
    QCOMPARE(deltaGrid()->source()->color({1, 2}), lessActive);
}

void PathwayChangesTest::anAdditionalLayerOfTheCandidateIsNotShown()
{
    compareSnapshots(snapshotText(2, 4), snapshotText(3, 4));
    QCOMPARE(deltaGrid()->source()->rowCount(), 2);
}

void PathwayChangesTest::cellsAreAsLargeAsTheBaselinesGroupsAllow()
{
    compareSnapshots(snapshotText(1, 64), snapshotText(1, 20));
    QCOMPARE(deltaGrid()->geometryOfCells().cellSize(), 5.0);
    compareSnapshots(snapshotText(1, 20), snapshotText(1, 20));
    QCOMPARE(deltaGrid()->geometryOfCells().cellSize(), 12.0);
}

void PathwayChangesTest::aHighGridScrollsWithoutIndicators()
{
    compareSnapshots(snapshotText(40, 4), snapshotText(40, 4));
    const auto views = m_stage->sheet().findChildren<CellGridView *>();
    const auto view =
        std::ranges::find(views, deltaGrid(), [](const auto *candidate) { return candidate->grid(); });
    QVERIFY(view != views.end());
    QCOMPARE((*view)->maximumHeight(), 160);
    QCOMPARE((*view)->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
}

void PathwayChangesTest::aNeuronThatTheCandidateLacksIsGrey()
{
    compareSnapshots(snapshotText(1, 4), snapshotText(1, 2, 0.2));
    QCOMPARE(deltaGrid()->source()->color({0, 1}), moreActive);
    QCOMPARE(deltaGrid()->source()->color({0, 3}), similar);
}

void PathwayChangesTest::bothHeatmapsShareTheSelection()
{
    compareSnapshots(snapshotText(2, 4), snapshotText(2, 4, 0.2));
    QCOMPARE(panels().size(), 2);
    QVERIFY(!panels()[0]->grid()->selectedCell());
    panels()[1]->grid()->pressCell({1, 3});
    QCOMPARE(panels()[0]->grid()->selectedCell(), (CellPosition{1, 3}));
    QCOMPARE(panels()[1]->grid()->selectedCell(), (CellPosition{1, 3}));
    panels()[0]->grid()->pressCell({1, 3});
    QVERIFY(!panels()[1]->grid()->selectedCell());
}

void PathwayChangesTest::thirtyTwoGroupsFitBesideEachOtherInASmallWindow()
{
    compareSnapshots(snapshotText(8, 32), snapshotText(8, 32));
    m_stage->sheet().resize(900, 640);
    m_stage->sheet().show();
    QCOMPARE(panels().size(), 2);
    for (const auto *panel : panels()) {
        QTRY_VERIFY(panel->width() > 300);
        auto *view = panel->findChild<CellGridView *>();
        QTRY_COMPARE(view->horizontalScrollBar()->maximum(), 0);
        QCOMPARE(view->grid()->geometryOfCells().cellSize(), 10.0);
        QTRY_VERIFY(view->viewport()->width() >= view->grid()->width());
    }
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::PathwayChangesTest)
#include "PathwayChangesTest.moc"
