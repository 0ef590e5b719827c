#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

#include <cstdint>
#include <vector>

namespace zorel::library {

/// How the activation of a channel group differs between two runs.
enum class ActivityChange : std::uint8_t { moreActive, lessActive, similar };

/// By more than 0.05, or else similar, which a value that is no number is as well.
ActivityChange activityChange(double delta);

/// One block of the baseline: what to add to the baseline's activations to get the candidate's, in the order
/// of the baseline's neurons. 0 where the candidate has no such neuron.
struct DeltaRow
{
    std::int64_t layer = 0;
    std::vector<double> deltas;

    bool operator==(const DeltaRow &) const = default;
};

/// A row for each block of the baseline, in its order. Blocks are matched by their number and neurons by
/// their index, of which the candidate's first counts.
std::vector<DeltaRow> activationDeltas(const backend::protocol::NeuronSnapshotPayload &baseline,
                                       const backend::protocol::NeuronSnapshotPayload &candidate);

/// Whether each neuron of either snapshot stands for the same channels as its match in the other.
bool haveSameShape(const backend::protocol::NeuronSnapshotPayload &baseline,
                   const backend::protocol::NeuronSnapshotPayload &candidate);

} // namespace zorel::library
