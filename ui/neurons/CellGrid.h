#pragma once

#include "ui/neurons/CellGridGeometry.h"
#include "ui/neurons/CellGridSource.h"

#include <QHash>
#include <QPixmap>
#include <QWidget>

#include <memory>
#include <optional>

namespace zorel::ui::neurons {

/// Rows of small coloured squares, painted in one go: what is drawn costs the visible cells, whatever the
/// grid's size. The arrow keys, Home, End, Page Up and Page Down move the current cell, Space presses it; to
/// assistive technology the grid is a table of cells. Main thread only.
class CellGrid : public QWidget
{
    Q_OBJECT

public:
    explicit CellGrid(const QString &accessibleName, QWidget *parent = nullptr);
    ~CellGrid() override;

    /// Replaces what is drawn; null draws nothing. `cellSize` is in points. The current cell stays where
    /// there is one.
    void setSource(std::shared_ptr<const CellGridSource> source, qreal cellSize);
    /// From now on the columns move together where they do not fit into this width otherwise, in points, but
    /// fit so.
    void fitInto(int width);
    const CellGridSource *source() const { return m_source.get(); }
    const CellGridGeometry &geometryOfCells() const { return m_geometry; }

    /// Outlines a cell; nothing outlines none.
    void setSelectedCell(std::optional<CellPosition> cell);
    std::optional<CellPosition> selectedCell() const { return m_selected; }
    /// The cell that the keyboard is at; nothing in an empty grid.
    std::optional<CellPosition> currentCell() const { return m_current; }
    void setCurrentCell(CellPosition cell);
    /// As a click on the cell.
    void pressCell(CellPosition cell);
    bool hasCell(CellPosition cell) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    void cellPressed(zorel::ui::neurons::CellPosition cell);
    /// The keyboard has moved; `area` is what should be seen now, in the grid's coordinates.
    void currentCellChanged(const QRect &area);
    /// The cells need another size, see sizeHint.
    void neededSizeChanged();

protected:
    void paintEvent(QPaintEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool event(QEvent *event) override;

private:
    CellGridGeometry fittingGeometry(int rows, int columns, qreal cellSize) const;
    void followSize(const CellGridGeometry &before);
    std::optional<CellPosition> neighbour(int key, Qt::KeyboardModifiers modifiers) const;
    int rowsOfAPage() const;
    void paintRow(QPainter &painter, int row, const QRect &exposed);
    void paintOutlines(QPainter &painter) const;
    const QPixmap &square(QRgb color, qreal devicePixelRatio);
    void announce(CellPosition cell);

    std::shared_ptr<const CellGridSource> m_source;
    CellGridGeometry m_geometry;
    qreal m_labelWidth = 0;
    std::optional<int> m_room;
    std::optional<CellPosition> m_selected;
    std::optional<CellPosition> m_current;
    QHash<QRgb, QPixmap> m_squares; ///< one rounded square a colour, at m_squareRatio
    qreal m_squareRatio = 0;
};

} // namespace zorel::ui::neurons
