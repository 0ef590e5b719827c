#pragma once

#include "ui/neurons/CellGridSource.h"

#include <QRectF>
#include <QSize>

#include <optional>

namespace zorel::ui::neurons {

/// Where the cells of a grid lie, in points, after a slot for the row's label.
class CellGridGeometry
{
public:
    static constexpr qreal labelSlot = 22;
    /// Between rows, and between columns that have room enough.
    static constexpr qreal gap = 2;
    /// Between columns that have little room.
    static constexpr qreal narrowGap = 1;
    /// Of a cell's corners.
    static constexpr qreal cornerRadius = 2;

    CellGridGeometry() = default;
    /// `labelWidth` is what the widest label needs; the slot grows with it.
    CellGridGeometry(int rows, int columns, qreal cellSize, qreal labelWidth, qreal columnGap = gap);

    int rows() const { return m_rows; }
    /// Of the longest row.
    int columns() const { return m_columns; }
    qreal cellSize() const { return m_cellSize; }
    qreal pitch() const { return m_cellSize + m_columnGap; }
    qreal rowPitch() const { return m_rowHeight + gap; }

    QSize size() const;
    QRectF cell(CellPosition position) const;
    QRectF label(int row) const;
    /// The cell at a point; nothing between cells, in the labels and outside.
    std::optional<CellPosition> cellAt(QPointF point) const;
    /// First and last row or column that lie in part within [from, to]; last < first when none does.
    struct Range
    {
        int first = 0;
        int last = -1;
    };
    Range rowsBetween(qreal from, qreal to) const;
    Range columnsBetween(qreal from, qreal to) const;

private:
    int m_rows = 0;
    int m_columns = 0;
    qreal m_cellSize = 0;
    qreal m_rowHeight = 0;
    qreal m_slot = labelSlot;
    qreal m_columnGap = gap;
};

} // namespace zorel::ui::neurons
