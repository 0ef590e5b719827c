#pragma once

#include <QRgb>
#include <QString>

namespace zorel::ui::neurons {

/// Row and column of a cell, counted from 0.
struct CellPosition
{
    int row = 0;
    int column = 0;

    bool operator==(const CellPosition &) const = default;
};

/// What a CellGrid draws. Rows may differ in length.
class CellGridSource
{
public:
    virtual ~CellGridSource() = default;

    virtual int rowCount() const = 0;
    virtual int columnCount(int row) const = 0;
    /// Written before the row's first cell.
    virtual QString rowLabel(int row) const = 0;
    virtual QRgb color(CellPosition cell) const = 0;
    virtual QString toolTip(CellPosition cell) const = 0;
    /// The cell in words, for those who do not see its colour.
    virtual QString description(CellPosition cell) const = 0;
};

} // namespace zorel::ui::neurons
