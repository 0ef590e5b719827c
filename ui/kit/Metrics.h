#pragma once

namespace zorel::ui::kit {

// Lengths in logical pixels. Everything stands on one 8-point grid.

inline constexpr int gridUnit = 8;

namespace spacing {
inline constexpr int half = gridUnit / 2;
inline constexpr int one = gridUnit;
inline constexpr int two = 2 * gridUnit;
inline constexpr int three = 3 * gridUnit;
} // namespace spacing

/// Of cards and sheets.
inline constexpr int cornerRadius = 10;
/// Of buttons, fields and badges.
inline constexpr int controlCornerRadius = 6;
inline constexpr int focusRingWidth = 2;
/// The side of a symbol beside text of the body size.
inline constexpr int symbolSize = 16;

} // namespace zorel::ui::kit
