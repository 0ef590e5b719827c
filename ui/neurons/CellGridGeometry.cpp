#include "ui/neurons/CellGridGeometry.h"

#include <QWidget>

#include <algorithm>
#include <cmath>

namespace zorel::ui::neurons {

namespace {

constexpr qreal labelGap = 6;
constexpr qreal smallestRow = 8; // a label's digits are as high

int boundedLength(qreal length)
{
    return static_cast<int>(std::min<qreal>(std::ceil(length), QWIDGETSIZE_MAX));
}

CellGridGeometry::Range between(qreal from, qreal to, qreal pitch, int count)
{
    if (count == 0 || to < 0 || from >= count * pitch) {
        return {};
    }
    return {std::max(0, static_cast<int>(from / pitch)), std::min(count - 1, static_cast<int>(to / pitch))};
}

} // namespace

CellGridGeometry::CellGridGeometry(int rows, int columns, qreal cellSize, qreal labelWidth, qreal columnGap)
    : m_rows(rows)
    , m_columns(columns)
    , m_cellSize(cellSize)
    , m_rowHeight(std::max(cellSize, smallestRow))
    , m_slot(std::max(labelSlot, std::ceil(labelWidth)))
    , m_columnGap(columnGap)
{}

QSize CellGridGeometry::size() const
{
    if (m_rows == 0) {
        return {0, 0};
    }
    const qreal cells = m_columns > 0 ? m_columns * pitch() - m_columnGap : 0;
    return {boundedLength(m_slot + labelGap + cells), boundedLength(m_rows * rowPitch() - gap)};
}

QRectF CellGridGeometry::cell(CellPosition position) const
{
    const qreal top = position.row * rowPitch() + (m_rowHeight - m_cellSize) / 2;
    return {m_slot + labelGap + position.column * pitch(), top, m_cellSize, m_cellSize};
}

QRectF CellGridGeometry::label(int row) const
{
    return {0, row * rowPitch(), m_slot, m_rowHeight};
}

std::optional<CellPosition> CellGridGeometry::cellAt(QPointF point) const
{
    const qreal x = point.x() - m_slot - labelGap;
    if (m_rows == 0 || m_columns == 0 || x < 0 || point.y() < 0 || x >= m_columns * pitch() ||
        point.y() >= m_rows * rowPitch()) {
        return std::nullopt;
    }
    const CellPosition position{static_cast<int>(point.y() / rowPitch()), static_cast<int>(x / pitch())};
    return cell(position).contains(point) ? std::optional{position} : std::nullopt;
}

CellGridGeometry::Range CellGridGeometry::rowsBetween(qreal from, qreal to) const
{
    return between(from, to, rowPitch(), m_rows);
}

CellGridGeometry::Range CellGridGeometry::columnsBetween(qreal from, qreal to) const
{
    const qreal start = m_slot + labelGap;
    return between(from - start, to - start, pitch(), m_columns);
}

} // namespace zorel::ui::neurons
