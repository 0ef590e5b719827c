#pragma once

#include <spawn.h>

namespace zorel::platform {

/// Makes a child started with these attributes see no descriptor of ours but 0 to 2, whatever their
/// close-on-exec flags say. Returns an error number, 0 on success.
int closeAllButStandardChannels(posix_spawn_file_actions_t *actions, short *flags);

} // namespace zorel::platform
