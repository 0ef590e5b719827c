#include "ui/neurons/CellGrid.h"
#include "tests/support/Snapshots.h"
#include "ui/kit/ScrollPage.h"
#include "ui/neurons/CellGridView.h"
#include "ui/neurons/SnapshotCells.h"
#include "ui/neurons/TierColors.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

namespace zorel::tests {

using backend::protocol::NeuronActivityTier;
using ui::neurons::CellGrid;
using ui::neurons::CellGridView;
using ui::neurons::CellPosition;
using ui::neurons::SnapshotCells;

class CellGridTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void paintsEachCellInTheColourOfItsTier();
    void hasTheTierColoursAsGiven();
    void leavesTwoPointsBetweenCells();
    void outlinesTheSelectedCellAlone();
    void aClickOnACellPressesIt();
    void aClickBetweenCellsPressesNothing();
    void theKeyboardMovesAndPresses();
    void theKeyboardStaysInsideRowsOfDifferentLength();
    void keepsTheCurrentCellWhenTheSourceIsReplaced();
    void drawsNothingOfAnEmptySnapshot();
    void drawsALayerOfTenThousandNeurons();
    void paintsOnceForANewSource();
    void scrollsFromItsMaximumHeightAndFollowsTheKeyboard();
    void aClickScrollsNothing();
    void thePageAroundFollowsTheKeyboard();
    void aClickScrollsNoPage();
    void columnsMoveTogetherWhereTheyWouldNotFit();
    void columnsStayApartWhereThatWouldNotDo();
    void columnsStayApartWhereTheyAreToldTo();

private:
    static std::shared_ptr<SnapshotCells> cells(int layers, int neurons)
    {
        return std::make_shared<SnapshotCells>(makeSnapshot(layers, neurons));
    }
    /// On a shown page that is lower than the grid.
    static CellGrid *addTallGrid(ui::kit::ScrollPage &page)
    {
        auto *grid = new CellGrid(QStringLiteral("Grid"));
        page.content()->addWidget(new CellGridView(grid, std::nullopt, CellGridView::Indicators::WhenNeeded,
                                                   CellGridView::Columns::StayApart));
        grid->setSource(cells(60, 5), 14);
        page.resize(400, 300);
        page.show();
        if (!QTest::qWaitForWindowActive(&page)) {
            qFatal("not active");
        }
        return grid;
    }
    static QPoint centre(const CellGrid &grid, CellPosition cell)
    {
        return grid.geometryOfCells().cell(cell).center().toPoint();
    }
};

void CellGridTest::paintsEachCellInTheColourOfItsTier()
{
    CellGrid grid(QStringLiteral("Grid"));
    const auto source = cells(4, 5);
    grid.setSource(source, 10);
    grid.resize(grid.sizeHint());
    const QImage image = grid.grab().toImage();
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 5; ++column) {
            const CellPosition cell{row, column};
            QCOMPARE(image.pixel(centre(grid, cell)), source->color(cell));
        }
    }
}

void CellGridTest::hasTheTierColoursAsGiven()
{
    QCOMPARE(ui::neurons::tierColor(NeuronActivityTier::inactive), qRgb(199, 199, 199));
    QCOMPARE(ui::neurons::tierColor(NeuronActivityTier::moderate), qRgb(242, 184, 38));
    QCOMPARE(ui::neurons::tierColor(NeuronActivityTier::high), qRgb(38, 184, 89));
}

void CellGridTest::leavesTwoPointsBetweenCells()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(2, 2), 14);
    const auto &geometry = grid.geometryOfCells();
    QCOMPARE(geometry.cell({0, 1}).left() - geometry.cell({0, 0}).right(), 2.0);
    QCOMPARE(geometry.cell({1, 0}).top() - geometry.cell({0, 0}).bottom(), 2.0);
    QCOMPARE(geometry.cell({0, 0}).size(), QSizeF(14, 14));
}

void CellGridTest::outlinesTheSelectedCellAlone()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(2, 3), 14);
    grid.resize(grid.sizeHint());
    const QImage before = grid.grab().toImage();
    grid.setSelectedCell(CellPosition{1, 1});
    const QImage after = grid.grab().toImage();
    const QRect outlined = grid.geometryOfCells().cell({1, 1}).toAlignedRect();
    bool changedInside = false;
    for (int y = 0; y < after.height(); ++y) {
        for (int x = 0; x < after.width(); ++x) {
            if (before.pixel(x, y) != after.pixel(x, y)) {
                QVERIFY2(outlined.contains(x, y), "the outline lies inside the cell's edge");
                changedInside = true;
            }
        }
    }
    QVERIFY(changedInside);
    QCOMPARE(after.pixel(centre(grid, {1, 1})), before.pixel(centre(grid, {1, 1})));
    grid.setSelectedCell(std::nullopt);
    QCOMPARE(grid.grab().toImage(), before);
}

void CellGridTest::aClickOnACellPressesIt()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(3, 3), 10);
    grid.resize(grid.sizeHint());
    QSignalSpy pressed(&grid, &CellGrid::cellPressed);
    QTest::mouseClick(&grid, Qt::LeftButton, {}, centre(grid, {2, 1}));
    QCOMPARE(pressed.size(), 1);
    QCOMPARE(pressed[0][0].value<CellPosition>(), (CellPosition{2, 1}));
    QCOMPARE(grid.currentCell(), (CellPosition{2, 1}));
}

void CellGridTest::aClickBetweenCellsPressesNothing()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(3, 3), 10);
    grid.resize(grid.sizeHint());
    QSignalSpy pressed(&grid, &CellGrid::cellPressed);
    const QPoint gap = grid.geometryOfCells().cell({0, 0}).bottomRight().toPoint() + QPoint(1, 1);
    QTest::mouseClick(&grid, Qt::LeftButton, {}, gap);
    QTest::mouseClick(&grid, Qt::LeftButton, {}, QPoint(2, 2));
    QTest::mouseClick(&grid, Qt::RightButton, {}, centre(grid, {0, 0}));
    QVERIFY(pressed.isEmpty());
}

void CellGridTest::theKeyboardMovesAndPresses()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(4, 5), 10);
    QCOMPARE(grid.currentCell(), (CellPosition{0, 0}));
    QTest::keyClick(&grid, Qt::Key_Right);
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(grid.currentCell(), (CellPosition{1, 1}));
    QTest::keyClick(&grid, Qt::Key_End);
    QCOMPARE(grid.currentCell(), (CellPosition{1, 4}));
    QTest::keyClick(&grid, Qt::Key_Right);
    QCOMPARE(grid.currentCell(), (CellPosition{1, 4}));
    QTest::keyClick(&grid, Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(grid.currentCell(), (CellPosition{3, 4}));
    QTest::keyClick(&grid, Qt::Key_Home, Qt::ControlModifier);
    QCOMPARE(grid.currentCell(), (CellPosition{0, 0}));
    QTest::keyClick(&grid, Qt::Key_PageDown);
    QCOMPARE(grid.currentCell(), (CellPosition{3, 0}));
    QTest::keyClick(&grid, Qt::Key_PageUp);
    QTest::keyClick(&grid, Qt::Key_Up);
    QTest::keyClick(&grid, Qt::Key_Left);
    QCOMPARE(grid.currentCell(), (CellPosition{0, 0}));

    QSignalSpy pressed(&grid, &CellGrid::cellPressed);
    QTest::keyClick(&grid, Qt::Key_Space);
    QCOMPARE(pressed.size(), 1);
    QCOMPARE(pressed[0][0].value<CellPosition>(), (CellPosition{0, 0}));
}

void CellGridTest::theKeyboardStaysInsideRowsOfDifferentLength()
{
    auto snapshot = makeSnapshot(3, 5);
    snapshot.layers[1].neurons.resize(2);
    snapshot.layers[2].neurons.clear();
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(std::make_shared<SnapshotCells>(snapshot), 10);
    grid.setCurrentCell({0, 4});
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(grid.currentCell(), (CellPosition{1, 1}));
    QTest::keyClick(&grid, Qt::Key_Down);
    QCOMPARE(grid.currentCell(), (CellPosition{1, 1}));
    grid.pressCell({1, 3});
    QCOMPARE(grid.currentCell(), (CellPosition{1, 1}));
}

void CellGridTest::keepsTheCurrentCellWhenTheSourceIsReplaced()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(4, 5), 10);
    grid.setCurrentCell({3, 4});
    grid.setSource(cells(4, 5), 10);
    QCOMPARE(grid.currentCell(), (CellPosition{3, 4}));
    grid.setSource(cells(2, 2), 14);
    QCOMPARE(grid.currentCell(), (CellPosition{0, 0}));
    grid.setSource(nullptr, 14);
    QVERIFY(!grid.currentCell());
    QTest::keyClick(&grid, Qt::Key_Down);
}

void CellGridTest::drawsNothingOfAnEmptySnapshot()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(0, 0), 14);
    QCOMPARE(grid.sizeHint(), QSize(0, 0));
    grid.resize(50, 50);
    QVERIFY(!grid.grab().isNull());
    grid.setSource(cells(3, 0), 14);
    QVERIFY(!grid.currentCell());
    QVERIFY(!grid.grab().isNull());
}

void CellGridTest::drawsALayerOfTenThousandNeurons()
{
    CellGrid grid(QStringLiteral("Grid"));
    const auto source = cells(2, 10000);
    grid.setSource(source, 6);
    grid.resize(grid.sizeHint());
    const QRect last = grid.geometryOfCells().cell({1, 9999}).toAlignedRect().adjusted(-4, -4, 4, 4);
    const QImage image = grid.grab(last).toImage();
    QCOMPARE(image.pixel(centre(grid, {1, 9999}) - last.topLeft()), source->color({1, 9999}));
}

class PaintCounter : public QObject
{
public:
    bool eventFilter(QObject *, QEvent *event) override
    {
        count += event->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int count = 0;
};

void CellGridTest::paintsOnceForANewSource()
{
    CellGrid grid(QStringLiteral("Grid"));
    grid.setSource(cells(6, 6), 10);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QCoreApplication::processEvents();
    PaintCounter counter;
    grid.installEventFilter(&counter);
    grid.setSource(cells(6, 6), 10);
    grid.setSelectedCell(CellPosition{1, 1});
    QTRY_COMPARE(counter.count, 1);
    QCoreApplication::processEvents();
    QCOMPARE(counter.count, 1);
}

void CellGridTest::scrollsFromItsMaximumHeightAndFollowsTheKeyboard()
{
    auto *grid = new CellGrid(QStringLiteral("Grid"));
    CellGridView view(grid, 100, CellGridView::Indicators::WhenNeeded, CellGridView::Columns::StayApart);
    grid->setSource(cells(4, 5), 14);
    view.resize(400, view.sizeHint().height());
    view.show();
    QTRY_COMPARE(view.height(), grid->sizeHint().height());
    grid->setSource(cells(40, 5), 14);
    QTRY_COMPARE(view.height(), 100);
    QCOMPARE(view.verticalScrollBar()->value(), 0);
    grid->setCurrentCell({39, 0});
    QTRY_VERIFY(grid->visibleRegion().contains(grid->geometryOfCells().cell({39, 0}).toAlignedRect()));
}

void CellGridTest::aClickScrollsNothing()
{
    QWidget window;
    auto *column = new QVBoxLayout(&window);
    auto *grid = new CellGrid(QStringLiteral("Grid"));
    auto *view =
        new CellGridView(grid, 100, CellGridView::Indicators::WhenNeeded, CellGridView::Columns::StayApart);
    column->addWidget(new QLineEdit);
    column->addWidget(view);
    grid->setSource(cells(40, 5), 14);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    QVERIFY(!grid->hasFocus());
    auto *bar = view->verticalScrollBar();
    bar->setValue(bar->maximum());
    QTest::mouseClick(grid, Qt::LeftButton, {}, centre(*grid, {37, 2}));
    QVERIFY(grid->hasFocus());
    QCOMPARE(grid->currentCell(), (CellPosition{37, 2}));
    QCOMPARE(bar->value(), bar->maximum());
}

void CellGridTest::thePageAroundFollowsTheKeyboard()
{
    ui::kit::ScrollPage page;
    CellGrid *grid = addTallGrid(page);
    const auto seesCurrentCell = [grid] {
        return grid->visibleRegion().contains(
            grid->geometryOfCells().cell(*grid->currentCell()).toAlignedRect());
    };
    grid->setFocus(Qt::TabFocusReason);
    QVERIFY(seesCurrentCell());
    QTest::keyClick(grid, Qt::Key_End, Qt::ControlModifier);
    QCOMPARE(grid->currentCell(), (CellPosition{59, 4}));
    QVERIFY(seesCurrentCell());
    QTest::keyClick(grid, Qt::Key_Home, Qt::ControlModifier);
    QVERIFY(seesCurrentCell());
}

void CellGridTest::aClickScrollsNoPage()
{
    ui::kit::ScrollPage page;
    CellGrid *grid = addTallGrid(page);
    QTest::mouseClick(grid, Qt::LeftButton, {}, centre(*grid, {1, 2}));
    QVERIFY(grid->hasFocus());
    QCOMPARE(grid->currentCell(), (CellPosition{1, 2}));
    QCOMPARE(page.verticalScrollBar()->value(), 0);
}

void CellGridTest::columnsMoveTogetherWhereTheyWouldNotFit()
{
    auto *grid = new CellGrid(QStringLiteral("Grid"));
    CellGridView view(grid, std::nullopt, CellGridView::Indicators::WhenNeeded,
                      CellGridView::Columns::MayMoveTogether);
    grid->setSource(cells(4, 32), 10);
    const QSize apart = grid->sizeHint();
    view.resize(apart.width() - 1, 100);
    view.show();
    const auto &geometry = grid->geometryOfCells();
    QTRY_COMPARE(geometry.cell({0, 1}).left() - geometry.cell({0, 0}).right(), 1.0);
    QCOMPARE(geometry.cell({1, 0}).top() - geometry.cell({0, 0}).bottom(), 2.0);
    QCOMPARE(geometry.cell({0, 0}).size(), QSizeF(10, 10));
    QTRY_COMPARE(grid->size(), QSize(apart.width() - 31, apart.height()));
    QCOMPARE(view.horizontalScrollBar()->maximum(), 0);
    QTRY_COMPARE(view.height(), apart.height());

    view.resize(apart.width(), 100);
    QTRY_COMPARE(grid->size(), apart);
    // The next snapshot finds the same room.
    view.resize(apart.width() - 1, 100);
    grid->setSource(nullptr, 10);
    grid->setSource(cells(4, 32), 10);
    QTRY_COMPARE(grid->width(), apart.width() - 31);
}

void CellGridTest::columnsStayApartWhereThatWouldNotDo()
{
    auto *grid = new CellGrid(QStringLiteral("Grid"));
    CellGridView view(grid, std::nullopt, CellGridView::Indicators::WhenNeeded,
                      CellGridView::Columns::MayMoveTogether);
    grid->setSource(cells(4, 32), 10);
    view.resize(200, 100);
    view.show();
    QTRY_VERIFY(view.horizontalScrollBar()->maximum() > 0);
    const auto &geometry = grid->geometryOfCells();
    QCOMPARE(geometry.cell({0, 1}).left() - geometry.cell({0, 0}).right(), 2.0);
}

void CellGridTest::columnsStayApartWhereTheyAreToldTo()
{
    auto *grid = new CellGrid(QStringLiteral("Grid"));
    CellGridView view(grid, std::nullopt, CellGridView::Indicators::Never, CellGridView::Columns::StayApart);
    grid->setSource(cells(4, 32), 10);
    view.resize(grid->sizeHint().width() - 1, 100);
    view.show();
    QTRY_COMPARE(view.horizontalScrollBar()->maximum(), 1);
    const auto &geometry = grid->geometryOfCells();
    QCOMPARE(geometry.cell({0, 1}).left() - geometry.cell({0, 0}).right(), 2.0);
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::CellGridTest)
#include "CellGridTest.moc"
