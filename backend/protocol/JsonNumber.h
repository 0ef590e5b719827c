#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace zorel::backend::protocol {

/// Whether `token` is one JSON number and nothing else.
bool isJsonNumber(std::string_view token);

/// The value of a JSON number that is a whole number of 64 bits, however it is written: 5, 5.0, 50e-1. Exact,
/// also beyond the 53 bits of a double. Nothing for other numbers and for what is no number.
std::optional<std::int64_t> wholeNumber(std::string_view token);

} // namespace zorel::backend::protocol
