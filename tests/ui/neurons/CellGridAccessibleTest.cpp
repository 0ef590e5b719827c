#include "ui/neurons/CellGridAccessible.h"
#include "tests/support/Snapshots.h"
#include "ui/neurons/CellGrid.h"
#include "ui/neurons/SnapshotCells.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>

namespace zorel::tests {

using ui::neurons::CellGrid;
using ui::neurons::CellPosition;
using ui::neurons::SnapshotCells;

class CellGridAccessibleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_grid = std::make_unique<CellGrid>(QStringLiteral("Neuron activation heatmap"));
        m_grid->setSource(std::make_shared<SnapshotCells>(makeSnapshot(3, 4)), 10);
        m_grid->resize(m_grid->sizeHint());
        m_table = QAccessible::queryAccessibleInterface(m_grid.get());
        QVERIFY(m_table && m_table->tableInterface());
    }

    void isANamedTableOfCells();
    void aCellHasPositionNameAndState();
    void aCellIsFoundByItsPlaceOnTheScreen();
    void aCellIsPressedLikeAButton();
    void cellsOfAReplacedSnapshotAreForgotten();
    void thereIsNoCellWhereARowIsShorter();
    void aCellOutlivesItsGridSafely();

private:
    QAccessibleInterface *cell(int row, int column) { return m_table->tableInterface()->cellAt(row, column); }

    std::unique_ptr<CellGrid> m_grid;
    QAccessibleInterface *m_table = nullptr;
};

void CellGridAccessibleTest::isANamedTableOfCells()
{
    QCOMPARE(m_table->role(), QAccessible::Table);
    QCOMPARE(m_table->text(QAccessible::Name), QStringLiteral("Neuron activation heatmap"));
    QCOMPARE(m_table->tableInterface()->rowCount(), 3);
    QCOMPARE(m_table->tableInterface()->columnCount(), 4);
    QCOMPARE(m_table->childCount(), 12);
    QCOMPARE(m_table->tableInterface()->rowDescription(2), QStringLiteral("2"));
    for (int index = 0; index < 12; ++index) {
        QCOMPARE(m_table->indexOfChild(m_table->child(index)), index);
        QCOMPARE(m_table->child(index)->parent(), m_table);
    }
}

void CellGridAccessibleTest::aCellHasPositionNameAndState()
{
    QAccessibleInterface *found = cell(1, 2);
    QCOMPARE(found->role(), QAccessible::Cell);
    QCOMPARE(found->text(QAccessible::Name), QStringLiteral("Layer 1, neuron 2 (dims 128–191): Inactive"));
    QCOMPARE(found->tableCellInterface()->rowIndex(), 1);
    QCOMPARE(found->tableCellInterface()->columnIndex(), 2);
    QVERIFY(found->state().selectable);
    QVERIFY(!found->state().selected);
    m_grid->setSelectedCell(CellPosition{1, 2});
    QVERIFY(found->state().selected);
    QVERIFY(found->tableCellInterface()->isSelected());
    QCOMPARE(m_table->tableInterface()->selectedCells(), QList<QAccessibleInterface *>{found});
}

void CellGridAccessibleTest::aCellIsFoundByItsPlaceOnTheScreen()
{
    QAccessibleInterface *found = cell(2, 3);
    const QPoint centre = found->rect().center();
    QCOMPARE(m_table->childAt(centre.x(), centre.y()), found);
}

void CellGridAccessibleTest::aCellIsPressedLikeAButton()
{
    QSignalSpy pressed(m_grid.get(), &CellGrid::cellPressed);
    QAccessibleActionInterface *actions = cell(2, 1)->actionInterface();
    QVERIFY(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
    actions->doAction(QAccessibleActionInterface::pressAction());
    QCOMPARE(pressed.size(), 1);
    QCOMPARE(pressed[0][0].value<CellPosition>(), (CellPosition{2, 1}));
}

void CellGridAccessibleTest::cellsOfAReplacedSnapshotAreForgotten()
{
    QVERIFY(cell(2, 3));
    m_grid->setSource(std::make_shared<SnapshotCells>(makeSnapshot(1, 2)), 14);
    QCOMPARE(m_table->childCount(), 2);
    QVERIFY(!cell(2, 3));
    QCOMPARE(cell(0, 1)->text(QAccessible::Name),
             QStringLiteral("Layer 0, neuron 1 (dims 64–127): Moderate"));
}

void CellGridAccessibleTest::thereIsNoCellWhereARowIsShorter()
{
    auto snapshot = makeSnapshot(2, 4);
    snapshot.layers[1].neurons.resize(1);
    m_grid->setSource(std::make_shared<SnapshotCells>(snapshot), 10);
    QVERIFY(cell(1, 0));
    QVERIFY(!cell(1, 1));
    QVERIFY(!m_table->child(6));
}

void CellGridAccessibleTest::aCellOutlivesItsGridSafely()
{
    const QAccessible::Id id = QAccessible::uniqueId(cell(1, 1));
    m_grid.reset();
    QVERIFY(!QAccessible::accessibleInterface(id));
}

} // namespace zorel::tests

QTEST_MAIN(zorel::tests::CellGridAccessibleTest)
#include "CellGridAccessibleTest.moc"
