#pragma once

namespace zorel::tests {

/// The installer script, spelled out line by line, without indentation, continuation lines and comments.
extern const char *const everyLineOfTheScript;

} // namespace zorel::tests
