#include "ui/neurons/CellGridAccessible.h"

#include "ui/neurons/CellGrid.h"

#include <QAccessibleWidget>
#include <QHash>
#include <QPointer>

namespace zorel::ui::neurons {

namespace {

CellPosition positionOf(const CellGrid &grid, int childIndex)
{
    const int columns = std::max(1, grid.geometryOfCells().columns());
    return {childIndex / columns, childIndex % columns};
}

/// One cell. It lives as long as its table's interface, and is invalid once the grid has no such cell.
class AccessibleCell : public QAccessibleInterface,
                       public QAccessibleTableCellInterface,
                       public QAccessibleActionInterface
{
public:
    AccessibleCell(CellGrid &grid, CellPosition position)
        : m_grid(&grid)
        , m_position(position)
    {}

    bool isValid() const override { return m_grid && m_grid->hasCell(m_position); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return isValid() ? m_grid->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override
    {
        return m_grid ? QAccessible::queryAccessibleInterface(m_grid) : nullptr;
    }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    QAccessible::Role role() const override { return QAccessible::Cell; }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name && isValid() ? m_grid->source()->description(m_position) : QString();
    }
    void setText(QAccessible::Text, const QString &) override {}

    QRect rect() const override
    {
        if (!isValid()) {
            return {};
        }
        const QRect area = m_grid->geometryOfCells().cell(m_position).toAlignedRect();
        return {m_grid->mapToGlobal(area.topLeft()), area.size()};
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.focusable = true;
        state.selectable = true;
        state.focused = m_grid->hasFocus() && m_grid->currentCell() == m_position;
        state.selected = isSelected();
        state.offscreen =
            !m_grid->visibleRegion().intersects(m_grid->geometryOfCells().cell(m_position).toAlignedRect());
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TableCellInterface) {
            return static_cast<QAccessibleTableCellInterface *>(this);
        }
        if (type == QAccessible::ActionInterface) {
            return static_cast<QAccessibleActionInterface *>(this);
        }
        return nullptr;
    }

    bool isSelected() const override { return isValid() && m_grid->selectedCell() == m_position; }
    QList<QAccessibleInterface *> columnHeaderCells() const override { return {}; }
    QList<QAccessibleInterface *> rowHeaderCells() const override { return {}; }
    int columnIndex() const override { return m_position.column; }
    int rowIndex() const override { return m_position.row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString &name) override
    {
        if (name == pressAction() && isValid()) {
            m_grid->pressCell(m_position);
        }
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    QPointer<CellGrid> m_grid;
    CellPosition m_position;
};

class AccessibleGrid : public QAccessibleWidget, public QAccessibleTableInterface
{
public:
    explicit AccessibleGrid(CellGrid &grid)
        : QAccessibleWidget(&grid, QAccessible::Table)
    {}
    ~AccessibleGrid() override { forgetCells(); }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::TableInterface ? static_cast<QAccessibleTableInterface *>(this)
                                                   : QAccessibleWidget::interface_cast(type);
    }

    int childCount() const override { return rowCount() * columnCount(); }
    QAccessibleInterface *child(int index) const override
    {
        return index >= 0 && index < childCount() ? cell(positionOf(*grid(), index)) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        auto *searched = const_cast<QAccessibleInterface *>(child);
        if (!searched || searched->role() != QAccessible::Cell || searched->parent() != this) {
            return -1;
        }
        const auto *position = searched->tableCellInterface();
        return accessibleChildIndex(*grid(), {position->rowIndex(), position->columnIndex()});
    }
    QAccessibleInterface *childAt(int x, int y) const override
    {
        const auto found = grid()->geometryOfCells().cellAt(grid()->mapFromGlobal(QPoint(x, y)));
        return found ? cell(*found) : nullptr;
    }
    QAccessibleInterface *focusChild() const override
    {
        return grid()->hasFocus() && grid()->currentCell() ? cell(*grid()->currentCell()) : nullptr;
    }

    QAccessibleInterface *caption() const override { return nullptr; }
    QAccessibleInterface *summary() const override { return nullptr; }
    QAccessibleInterface *cellAt(int row, int column) const override { return cell({row, column}); }
    int selectedCellCount() const override { return grid()->selectedCell() ? 1 : 0; }
    QList<QAccessibleInterface *> selectedCells() const override
    {
        return grid()->selectedCell() ? QList<QAccessibleInterface *>{cell(*grid()->selectedCell())}
                                      : QList<QAccessibleInterface *>{};
    }
    QString columnDescription(int) const override { return {}; }
    QString rowDescription(int row) const override
    {
        return grid()->source() && row >= 0 && row < rowCount() ? grid()->source()->rowLabel(row) : QString();
    }
    int selectedColumnCount() const override { return 0; }
    int selectedRowCount() const override { return 0; }
    int columnCount() const override { return grid()->geometryOfCells().columns(); }
    int rowCount() const override { return grid()->geometryOfCells().rows(); }
    QList<int> selectedColumns() const override { return {}; }
    QList<int> selectedRows() const override { return {}; }
    bool isColumnSelected(int) const override { return false; }
    bool isRowSelected(int) const override { return false; }
    bool selectRow(int) override { return false; }
    bool selectColumn(int) override { return false; }
    bool unselectRow(int) override { return false; }
    bool unselectColumn(int) override { return false; }
    void modelChange(QAccessibleTableModelChangeEvent *) override { forgetCells(); }

private:
    CellGrid *grid() const { return static_cast<CellGrid *>(widget()); }

    QAccessibleInterface *cell(CellPosition position) const
    {
        if (!grid()->hasCell(position)) {
            return nullptr;
        }
        const int index = accessibleChildIndex(*grid(), position);
        if (const auto known = m_cells.constFind(index); known != m_cells.constEnd()) {
            return QAccessible::accessibleInterface(*known);
        }
        auto *made = new AccessibleCell(*grid(), position);
        m_cells.insert(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }

    void forgetCells() const
    {
        for (const QAccessible::Id id : std::as_const(m_cells)) {
            QAccessible::deleteAccessibleInterface(id);
        }
        m_cells.clear();
    }

    mutable QHash<int, QAccessible::Id> m_cells; ///< by child index; made when asked for
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *grid = qobject_cast<CellGrid *>(object);
    return grid ? new AccessibleGrid(*grid) : nullptr;
}

} // namespace

void installCellGridAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    Q_UNUSED(installed);
}

int accessibleChildIndex(const CellGrid &grid, CellPosition cell)
{
    return cell.row * grid.geometryOfCells().columns() + cell.column;
}

} // namespace zorel::ui::neurons
