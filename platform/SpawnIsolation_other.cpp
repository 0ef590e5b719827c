#include "platform/SpawnIsolation.h"

namespace zorel::platform {

int closeAllButStandardChannels(posix_spawn_file_actions_t *actions, short *)
{
    return ::posix_spawn_file_actions_addclosefrom_np(actions, 3);
}

} // namespace zorel::platform
