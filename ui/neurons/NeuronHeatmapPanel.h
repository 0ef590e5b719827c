#pragma once

#include "backend/protocol/NeuronSelection.h"

#include <QWidget>

#include <memory>
#include <optional>

namespace zorel::ui::kit {
class TextLabel;
}

namespace zorel::ui::neurons {

class CellGrid;
class NeuronDetailsBox;
class SnapshotCells;

/// A neuron snapshot as a heatmap with its legend, and the details of the selected cell. The selection
/// belongs to the screen: the panel shows it and tells what the user chose. Main thread only.
class NeuronHeatmapPanel : public QWidget
{
    Q_OBJECT

public:
    /// `maximumHeight` limits the grid, in points; a higher one scrolls.
    explicit NeuronHeatmapPanel(const QString &title, std::optional<int> maximumHeight = std::nullopt,
                                QWidget *parent = nullptr);
    ~NeuronHeatmapPanel() override;

    void setSubtitle(const QString &subtitle);
    /// Repaints the grid once.
    void setSnapshot(const backend::protocol::NeuronSnapshotPayload &snapshot);
    /// A selection that the snapshot lacks outlines no cell; its details stay.
    void setSelection(const std::optional<backend::protocol::NeuronSelection> &selection);

    CellGrid *grid() const { return m_grid; }

Q_SIGNALS:
    /// The user pressed a cell: the selection to be, nothing when the selected cell was pressed again.
    void selectionChosen(const std::optional<zorel::backend::protocol::NeuronSelection> &selection);

private:
    QWidget *makeHeader(const QString &title);
    void showSelection();

    std::shared_ptr<const SnapshotCells> m_cells;
    std::optional<backend::protocol::NeuronSelection> m_selection;
    kit::TextLabel *m_subtitle;
    kit::TextLabel *m_step;
    CellGrid *m_grid;
    NeuronDetailsBox *m_details;
};

} // namespace zorel::ui::neurons
