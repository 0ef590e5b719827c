#include "ui/neurons/CellGridView.h"

#include "ui/neurons/CellGrid.h"

#include <QScrollBar>

#include <algorithm>

namespace zorel::ui::neurons {

namespace {

constexpr int marginOfCurrentCell = 12;

} // namespace

CellGridView::CellGridView(CellGrid *grid, std::optional<int> maximumHeight, Indicators indicators,
                           Columns columns, QWidget *parent)
    : QScrollArea(parent)
    , m_grid(grid)
    , m_maximumHeight(maximumHeight)
    , m_columns(columns)
{
    setWidget(grid);
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    grid->setAutoFillBackground(false);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    if (indicators == Indicators::Never || !maximumHeight) {
        setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    }
    connect(grid, &CellGrid::currentCellChanged, this, &CellGridView::reveal);
    connect(grid, &CellGrid::neededSizeChanged, this, [this] {
        m_grid->resize(m_grid->sizeHint());
        fitHeight();
    });
    fitHeight();
}

QSize CellGridView::sizeHint() const
{
    return {m_grid->sizeHint().width() + verticalScrollBar()->sizeHint().width(), fittingHeight()};
}

QSize CellGridView::minimumSizeHint() const
{
    return {0, fittingHeight()};
}

// Here, and on the pages around, which may be lower than this view.
void CellGridView::reveal(const QRect &area)
{
    for (QWidget *around = this; around; around = around->parentWidget()) {
        if (auto *page = qobject_cast<QScrollArea *>(around)) {
            const QPoint centre = m_grid->mapTo(page->widget(), area.center());
            page->ensureVisible(centre.x(), centre.y(), marginOfCurrentCell + area.width() / 2,
                                marginOfCurrentCell + area.height() / 2);
        }
    }
}

int CellGridView::fittingHeight() const
{
    int height = m_grid->sizeHint().height();
    if (width() < m_grid->sizeHint().width()) {
        height += horizontalScrollBar()->sizeHint().height();
    }
    return m_maximumHeight ? std::min(height, *m_maximumHeight) : height;
}

void CellGridView::fitHeight()
{
    const int height = fittingHeight();
    if (minimumHeight() != height || maximumHeight() != height) {
        setFixedHeight(height);
    }
}

void CellGridView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    if (m_columns == Columns::MayMoveTogether) {
        m_grid->fitInto(viewport()->width());
    }
    fitHeight();
}

} // namespace zorel::ui::neurons
