#pragma once

#include <QScrollArea>

#include <optional>

namespace zorel::ui::neurons {

class CellGrid;

/// A grid as high as it needs to be, up to a height from which it scrolls. The cell that the keyboard is at
/// stays in view, also on the pages that the view stands on.
class CellGridView : public QScrollArea
{
    Q_OBJECT

public:
    enum class Indicators { WhenNeeded, Never };
    /// Whether columns move together where the view is too narrow for them.
    enum class Columns { StayApart, MayMoveTogether };

    /// `maximumHeight` in points; without one the view never scrolls up and down. Owns `grid`.
    CellGridView(CellGrid *grid, std::optional<int> maximumHeight, Indicators indicators, Columns columns,
                 QWidget *parent = nullptr);

    CellGrid *grid() const { return m_grid; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void reveal(const QRect &area);
    int fittingHeight() const;
    void fitHeight();

    CellGrid *m_grid;
    std::optional<int> m_maximumHeight;
    Columns m_columns;
};

} // namespace zorel::ui::neurons
