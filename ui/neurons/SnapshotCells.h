#pragma once

#include "backend/protocol/NeuronSelection.h"
#include "ui/neurons/CellGridSource.h"

#include <optional>

namespace zorel::ui::neurons {

/// A snapshot as a grid: a row a block, a cell a channel group, in the snapshot's order, coloured by tier.
class SnapshotCells : public CellGridSource
{
public:
    explicit SnapshotCells(backend::protocol::NeuronSnapshotPayload snapshot)
        : m_snapshot(std::move(snapshot))
    {}

    const backend::protocol::NeuronSnapshotPayload &snapshot() const { return m_snapshot; }
    const backend::protocol::VisualNeuron &neuron(CellPosition cell) const;
    backend::protocol::NeuronSelection selection(CellPosition cell) const;
    /// The first cell of the selected block and channel group; nothing when the snapshot has none.
    std::optional<CellPosition> find(const backend::protocol::NeuronSelection &selection) const;

    int rowCount() const override { return static_cast<int>(m_snapshot.layers.size()); }
    int columnCount(int row) const override;
    QString rowLabel(int row) const override;
    QRgb color(CellPosition cell) const override;
    QString toolTip(CellPosition cell) const override;
    QString description(CellPosition cell) const override { return toolTip(cell); }

private:
    const backend::protocol::LayerNeurons &layer(int row) const
    {
        return m_snapshot.layers[static_cast<std::size_t>(row)];
    }

    backend::protocol::NeuronSnapshotPayload m_snapshot;
};

} // namespace zorel::ui::neurons
