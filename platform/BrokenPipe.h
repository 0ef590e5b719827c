#pragma once

namespace zorel::platform {

/// From now on, writing to a pipe whose reader is gone is an error of that write and no longer ends the
/// process. Children inherit this unless whoever starts them restores the default.
void ignoreBrokenPipe();

} // namespace zorel::platform
