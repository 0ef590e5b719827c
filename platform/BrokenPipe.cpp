#include "platform/BrokenPipe.h"

#include <csignal>

namespace zorel::platform {

void ignoreBrokenPipe()
{
    std::signal(SIGPIPE, SIG_IGN);
}

} // namespace zorel::platform
