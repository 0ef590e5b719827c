#include "platform/SpawnIsolation.h"

namespace zorel::platform {

int closeAllButStandardChannels(posix_spawn_file_actions_t *, short *flags)
{
    *flags = static_cast<short>(*flags | POSIX_SPAWN_CLOEXEC_DEFAULT);
    return 0;
}

} // namespace zorel::platform
