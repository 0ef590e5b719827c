#pragma once

// Private to the decoders: brings in the whole of simdjson.

#include "backend/protocol/EventName.h"
#include "backend/protocol/NeuronSnapshotPayload.h"

namespace zorel::backend::protocol {

/// Reads a snapshot's keys from the top level of `object`, and "event" on the way into `name`.
/// Reading::otherType when a key is missing or has another type.
Reading readSnapshot(ondemand::object object, EventName &name, NeuronSnapshotPayload &snapshot);

} // namespace zorel::backend::protocol
