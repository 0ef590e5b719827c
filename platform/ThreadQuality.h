#pragma once

namespace zorel::platform {

/// Tells the system that the user waits for what the calling thread does. Without effect where systems have
/// no such notion.
void markThreadUserInitiated();

/// What debuggers and process viewers call the calling thread; some show no more than 15 characters.
void nameThread(const char *name);

} // namespace zorel::platform
