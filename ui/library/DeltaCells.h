#pragma once

#include "library/ActivationDelta.h"
#include "ui/neurons/CellGridSource.h"

#include <vector>

namespace zorel::ui::library {

/// Activation differences as a grid: a row a block of the baseline, a cell a channel group.
class DeltaCells : public neurons::CellGridSource
{
public:
    explicit DeltaCells(std::vector<zorel::library::DeltaRow> rows)
        : m_rows(std::move(rows))
    {}

    int rowCount() const override { return static_cast<int>(m_rows.size()); }
    int columnCount(int row) const override { return static_cast<int>(at(row).deltas.size()); }
    QString rowLabel(int row) const override { return QString::number(at(row).layer); }
    QRgb color(neurons::CellPosition cell) const override;
    QString toolTip(neurons::CellPosition cell) const override;
    QString description(neurons::CellPosition cell) const override;

private:
    const zorel::library::DeltaRow &at(int row) const { return m_rows[static_cast<std::size_t>(row)]; }
    double delta(neurons::CellPosition cell) const
    {
        return at(cell.row).deltas[static_cast<std::size_t>(cell.column)];
    }

    std::vector<zorel::library::DeltaRow> m_rows;
};

/// The colour of a kind of change, the same in light and dark windows.
QRgb changeRgb(zorel::library::ActivityChange change);

} // namespace zorel::ui::library
