#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

#include <cstdint>

namespace zorel::tests {

/// A snapshot of `layers` blocks, numbered from `firstLayer`, with `neurons` channel groups of 64 channels
/// each. Tiers and activations differ from cell to cell: 0.1 x block + 0.01 x group.
inline backend::protocol::NeuronSnapshotPayload makeSnapshot(int layers, int neurons,
                                                             std::int64_t firstLayer = 0)
{
    backend::protocol::NeuronSnapshotPayload snapshot;
    snapshot.step = 120;
    snapshot.nLayers = layers;
    snapshot.neuronsPerLayer = neurons;
    snapshot.hiddenDim = std::int64_t{64} * neurons;
    for (std::int64_t layer = 0; layer < layers; ++layer) {
        backend::protocol::LayerNeurons row{firstLayer + layer, {}};
        for (std::int64_t index = 0; index < neurons; ++index) {
            const double activation = 0.1 * static_cast<double>(layer) + 0.01 * static_cast<double>(index);
            const auto tier = static_cast<backend::protocol::NeuronActivityTier>((layer + index) % 3);
            row.neurons.push_back({index, activation, index * 64, index * 64 + 63, tier});
        }
        snapshot.layers.push_back(std::move(row));
    }
    return snapshot;
}

} // namespace zorel::tests
