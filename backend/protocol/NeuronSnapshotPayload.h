#pragma once

#include <cstdint>
#include <vector>

namespace zorel::backend::protocol {

/// How active a channel group is. The sidecar decides; the application never recomputes it.
enum class NeuronActivityTier : std::uint8_t { inactive, moderate, high };

/// A group of hidden channels shown as one heatmap cell.
struct VisualNeuron
{
    std::int64_t index = 0; ///< position within the block
    double activation = 0;  ///< mean absolute activation of the group, averaged over the batch
    std::int64_t dimStart = 0;
    std::int64_t dimEnd = 0;
    NeuronActivityTier tier = NeuronActivityTier::inactive;

    bool operator==(const VisualNeuron &) const = default;
};

/// One transformer block; identified in lists by `layer`.
struct LayerNeurons
{
    std::int64_t layer = 0;
    std::vector<VisualNeuron> neurons;

    bool operator==(const LayerNeurons &) const = default;
};

/// The activations of every block at one training step. The counts are the sender's: they need not agree with
/// `layers`.
struct NeuronSnapshotPayload
{
    std::int64_t step = 0;
    bool final = false; ///< taken at the end of a run
    std::int64_t nLayers = 0;
    std::int64_t neuronsPerLayer = 0;
    std::int64_t hiddenDim = 0;
    std::vector<LayerNeurons> layers;

    bool operator==(const NeuronSnapshotPayload &) const = default;
};

} // namespace zorel::backend::protocol
