#include "backend/protocol/SnapshotDecoder.h"

#include "backend/protocol/SnapshotReader.h"

namespace zorel::backend::protocol {

std::optional<NeuronSnapshotPayload> decodeSnapshot(std::string_view json, std::size_t readable)
{
    JsonDocument document;
    ondemand::object object;
    if (!document.open(json, readable, object)) {
        return std::nullopt;
    }
    std::optional<NeuronSnapshotPayload> snapshot(std::in_place);
    EventName name;
    if (readSnapshot(object, name, *snapshot) != Reading::taken || !document.isAtEnd()) {
        return std::nullopt;
    }
    return snapshot;
}

} // namespace zorel::backend::protocol
