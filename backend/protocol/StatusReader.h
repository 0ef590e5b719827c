#pragma once

// Private to the decoders: brings in the whole of simdjson.

#include "backend/protocol/EventName.h"
#include "backend/protocol/TrainStatusPayload.h"

namespace zorel::backend::protocol {

/// Reads a status from `object`, the top level of a document with this `firstKey`, and "event" on the way
/// into `name`. Reading::otherType when a required key is missing or has another type; `missing` then holds
/// its name.
Reading readStatus(const char *firstKey, ondemand::object object, EventName &name, TrainStatusPayload &status,
                   std::string_view &missing);

} // namespace zorel::backend::protocol
