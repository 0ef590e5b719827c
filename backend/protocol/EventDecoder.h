#pragma once

#include "backend/protocol/BackendEvent.h"

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace zorel::backend::protocol {

/// Why a line is no event. The text is for developers; users see the start of the line instead.
struct DecodingError
{
    std::string message;
};

/// Turns lines of the sidecar's standard output into events. Keeps the parser's memory between lines, so one
/// object serves one stream; not thread-safe.
class EventDecoder
{
public:
    /// Readable bytes that must follow a line for it to be decoded where it stands (their content does not
    /// matter).
    static constexpr std::size_t padding = 64;

    EventDecoder();
    ~EventDecoder();
    EventDecoder(EventDecoder &&) noexcept;
    EventDecoder &operator=(EventDecoder &&) noexcept;

    /// Decodes one trimmed line (UTF-8, no line feed). `readable` counts the bytes that may be read from the
    /// line's start; with at least `padding` beyond its end nothing is copied.
    std::variant<BackendEvent, DecodingError> decode(std::string_view line, std::size_t readable = 0);

private:
    class Implementation;
    std::unique_ptr<Implementation> m_implementation;
};

} // namespace zorel::backend::protocol
