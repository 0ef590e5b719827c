#pragma once

#include <QString>

#include <string_view>

namespace zorel::backend::protocol {

/// The text of `utf8`, character for character; invalid bytes become U+FFFD.
QString toQString(std::string_view utf8);

} // namespace zorel::backend::protocol
