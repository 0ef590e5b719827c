#pragma once

#include <string_view>

namespace caldra {

inline constexpr std::string_view libraryVersion = "1.0.0";

} // namespace caldra
