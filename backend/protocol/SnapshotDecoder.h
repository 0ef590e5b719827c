#pragma once

#include "backend/protocol/NeuronSnapshotPayload.h"

#include <cstddef>
#include <optional>
#include <string_view>

namespace zorel::backend::protocol {

/// Decodes a whole `neuron_snapshot.json`: the keys of a "neurons" event without "event", all of them
/// required. Nothing on any deviation. `readable` is that of EventDecoder::decode.
std::optional<NeuronSnapshotPayload> decodeSnapshot(std::string_view json, std::size_t readable = 0);

} // namespace zorel::backend::protocol
