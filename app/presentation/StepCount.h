#pragma once

#include <QString>

#include <array>
#include <cstdint>
#include <optional>

namespace zorel::app::presentation {

/// The step counts that a single press sets.
inline constexpr std::array<std::int64_t, 4> quickStepCounts{100, 1000, 10'000, 50'000};

/// A whole decimal number: an optional sign and the digits 0 to 9, nothing else. Nothing for any other text
/// and for a number beyond 64 bits.
std::optional<std::int64_t> parseStepCount(const QString &text);

/// By how much the stepper moves a step count of `current`, up or down.
std::int64_t stepperIncrement(std::int64_t current);

} // namespace zorel::app::presentation
