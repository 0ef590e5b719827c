#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

#include <optional>
#include <string_view>

namespace zorel::backend::protocol {

/// Decodes a whole `neuron_snapshot.json`: the keys of a "neurons" event without "event", all of them
/// required. Nothing on any deviation.
std::optional<NeuronSnapshotPayload> decodeSnapshot(std::string_view json);

} // namespace zorel::backend::protocol
