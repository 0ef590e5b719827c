#pragma once

#include "backend/protocol/NeuronSelection.h"

#include <QString>

namespace zorel::app::presentation {

// What is said about a neuron snapshot, wherever one is drawn.

/// "Inactive", "Moderate" or "Highly active".
QString tierTitle(backend::protocol::NeuronActivityTier tier);
/// The side of a heatmap cell in points, 6 to 14: about 320 points for all cells of a block.
double heatmapCellSize(std::int64_t neuronsPerLayer);
/// "128–191".
QString channelsText(const backend::protocol::VisualNeuron &neuron);
/// "Layer 3, neuron 2 (dims 128–191): Moderate".
QString neuronToolTip(std::int64_t layer, const backend::protocol::VisualNeuron &neuron);
/// What the selected cell stands for. `layerCount` is the snapshot's own figure.
QString selectedNeuronSentence(const backend::protocol::NeuronSelection &selection, std::int64_t layerCount);
/// Four decimals.
QString activationText(double activation);
/// Whether `neuron` of block `layer` is the selected channel group, whatever its activation is now.
bool isSelected(const backend::protocol::NeuronSelection &selection, std::int64_t layer,
                const backend::protocol::VisualNeuron &neuron);
/// What stands in place of the heatmap while a text model has no snapshot; `state` is the training status's.
QString missingSnapshotText(const QString &state);
/// What stands there for the other families.
QString neuronsOfOtherFamiliesText();

} // namespace zorel::app::presentation
