#pragma once

#include "backend/protocol/EventDecoder.h"

#include <optional>

namespace zorel::tests {

/// A "status" line with all keys that are required.
inline constexpr std::string_view statusWithoutValidationLoss =
    R"({"event":"status","state":"running","step":1,"max_steps":2,"loss":3,"lr":4,"grad_norm":5,)"
    R"("tokens_per_sec":6,"elapsed_s":7})";

/// The event of a line; none where it is another one, or bad.
template <class Event>
std::optional<Event> decoded(std::string_view line)
{
    const auto result = backend::protocol::EventDecoder().decode(line);
    const auto *event = std::get_if<backend::protocol::BackendEvent>(&result);
    const Event *wanted = event ? std::get_if<Event>(event) : nullptr;
    return wanted ? std::optional(*wanted) : std::nullopt;
}

/// Why a line is bad; empty where it is not.
inline std::string errorOf(std::string_view line)
{
    const auto result = backend::protocol::EventDecoder().decode(line);
    const auto *error = std::get_if<backend::protocol::DecodingError>(&result);
    return error ? error->message : std::string();
}

inline bool isBad(std::string_view line)
{
    return !errorOf(line).empty();
}

/// The line of an object with one more key at its end.
inline std::string withKey(std::string_view line, std::string_view keyAndValue)
{
    return std::string(line.substr(0, line.size() - 1)).append(",").append(keyAndValue).append("}");
}

} // namespace zorel::tests
