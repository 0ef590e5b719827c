#include "ui/neurons/SnapshotCells.h"

#include "app/presentation/NeuronTexts.h"
#include "ui/neurons/TierColors.h"

namespace zorel::ui::neurons {

using backend::protocol::NeuronSelection;
using backend::protocol::VisualNeuron;

const VisualNeuron &SnapshotCells::neuron(CellPosition cell) const
{
    return layer(cell.row).neurons[static_cast<std::size_t>(cell.column)];
}

NeuronSelection SnapshotCells::selection(CellPosition cell) const
{
    return {layer(cell.row).layer, neuron(cell)};
}

std::optional<CellPosition> SnapshotCells::find(const NeuronSelection &selection) const
{
    for (int row = 0; row < rowCount(); ++row) {
        if (layer(row).layer != selection.layer) {
            continue;
        }
        for (int column = 0; column < columnCount(row); ++column) {
            if (app::presentation::isSelected(selection, layer(row).layer, neuron({row, column}))) {
                return CellPosition{row, column};
            }
        }
    }
    return std::nullopt;
}

int SnapshotCells::columnCount(int row) const
{
    return static_cast<int>(layer(row).neurons.size());
}

QString SnapshotCells::rowLabel(int row) const
{
    return QString::number(layer(row).layer);
}

QRgb SnapshotCells::color(CellPosition cell) const
{
    return tierColor(neuron(cell).tier);
}

QString SnapshotCells::toolTip(CellPosition cell) const
{
    return app::presentation::neuronToolTip(layer(cell.row).layer, neuron(cell));
}

} // namespace zorel::ui::neurons
