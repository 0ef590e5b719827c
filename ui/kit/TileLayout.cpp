#include "ui/kit/TileLayout.h"

#include "ui/kit/Metrics.h"

#include <algorithm>

namespace zorel::ui::kit {

TileLayout::TileLayout(int narrowestTile, QWidget *parent)
    : ItemLayout(parent)
    , m_narrowestTile(narrowestTile)
{
    setSpacing(spacing::one);
}

int TileLayout::columnsFor(int width) const
{
    const int fitting = (width + spacing()) / (m_narrowestTile + spacing());
    int columns = std::clamp(fitting, 1, std::max(count(), 1));
    // A single tile in the last row looks forgotten.
    while (columns > 1 && count() % columns == 1) {
        --columns;
    }
    return columns;
}

int TileLayout::arrange(const QRect &area, Pass pass) const
{
    const int columns = columnsFor(area.width());
    const int tileWidth = std::max((area.width() - (columns - 1) * spacing()) / columns, 0);
    int top = area.top();
    for (int first = 0; first < count(); first += columns) {
        const int last = std::min(first + columns, count());
        int rowHeight = 0;
        for (int index = first; index < last; ++index) {
            rowHeight = std::max(rowHeight, heightOf(itemAt(index), tileWidth));
        }
        for (int index = first; pass == Pass::Place && index < last; ++index) {
            const int left = area.left() + (index - first) * (tileWidth + spacing());
            place(itemAt(index), area, QRect(left, top, tileWidth, rowHeight));
        }
        top += rowHeight + (last < count() ? spacing() : 0);
    }
    return top - area.top();
}

QSize TileLayout::sizeHint() const
{
    const QMargins margins = contentsMargins();
    const int columns = std::max(count(), 1);
    const int width =
        columns * m_narrowestTile + (columns - 1) * spacing() + margins.left() + margins.right();
    return {width, heightForWidth(width)};
}

} // namespace zorel::ui::kit
