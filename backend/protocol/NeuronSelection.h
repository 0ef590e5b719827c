#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

namespace zorel::backend::protocol {

/// The selected heatmap cell: a block and a copy of its neuron.
struct NeuronSelection
{
    std::int64_t layer = 0;
    VisualNeuron neuron;

    bool operator==(const NeuronSelection &) const = default;
};

} // namespace zorel::backend::protocol
