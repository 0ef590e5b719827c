#pragma once

#include "backend/protocol/JsonDocument.h"

#include <array>
#include <optional>

namespace zorel::backend::protocol {

/// The values of "event", in the order of the alternatives of BackendEvent.
enum class EventKind : std::uint8_t {
    ready,
    status,
    neurons,
    log,
    error,
    modelArchived,
    paths,
    modelIdentity,
    done
};

inline constexpr std::array<std::string_view, 9> eventNames{
    "ready", "status", "neurons", "log", "error", "model_archived", "paths", "model_identity", "done"};

/// The value of the key "event" that was read last.
class EventName
{
public:
    Reading read(ondemand::value &value)
    {
        std::string_view name;
        const Reading reading = readUtf8(value, name);
        m_name = reading == Reading::taken ? std::optional(name) : std::nullopt;
        return reading;
    }
    bool is(EventKind kind) const { return m_name == eventNames[static_cast<std::size_t>(kind)]; }
    std::optional<std::string_view> text() const { return m_name; }

private:
    std::optional<std::string_view> m_name;
};

/// The field that every event has.
inline auto eventField(EventName &name)
{
    return field<"event">([&name](ondemand::value &value) { return name.read(value); });
}

} // namespace zorel::backend::protocol
