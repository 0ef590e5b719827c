#pragma once

#include <QString>

#include <string_view>

namespace zorel::backend::protocol {

/// How much of a line that is no event is shown.
inline constexpr int badLineLength = 120;

/// The first badLineLength characters of a UTF-8 line, as a reader counts them: a letter with its accents or
/// an emoji made of several is one. Looks at a bounded number of bytes; where a single character fills them
/// all, it is cut.
QString startOfLine(std::string_view trimmedLine);

} // namespace zorel::backend::protocol
