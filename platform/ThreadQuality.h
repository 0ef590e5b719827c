#pragma once

namespace zorel::platform {

/// Tells the system that the user waits for what the calling thread does. Without effect where systems have
/// no such notion.
void markThreadUserInitiated();

} // namespace zorel::platform
