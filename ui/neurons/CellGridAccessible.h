#pragma once

#include "ui/neurons/CellGridSource.h"

namespace zorel::ui::neurons {

class CellGrid;

/// Makes every CellGrid a table of cells for assistive technology: each cell with its row, column, name and
/// state, to be pressed like a button. Repeated calls do nothing.
void installCellGridAccessibility();

/// The position of a cell among the table's children.
int accessibleChildIndex(const CellGrid &grid, CellPosition cell);

} // namespace zorel::ui::neurons
